// SPDX-License-Identifier: MIT
// Owners of the library's handles.
#ifndef TREEVAULT_PROGRAM_HANDLES_H
#define TREEVAULT_PROGRAM_HANDLES_H

#include <treevault/treevault.h>

#include <utility>

namespace treevault::program {

template <typename T, void(TREEVAULT_CALL* Close)(T*)>
class Handle {
public:
    Handle() = default;
    Handle(Handle&& other) noexcept : Owned(std::exchange(other.Owned, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(Owned, other.Owned);
        return *this;
    }
    ~Handle() { Close(Owned); }

    T* Get() const noexcept { return Owned; }
    explicit operator bool() const noexcept { return Owned != nullptr; }

    // Where a function puts a handle for this owner, which must be empty.
    T** Receive() noexcept { return &Owned; }

private:
    T* Owned = nullptr;
};

using NodeHandle = Handle<IACNode, AcnCloseNodeHandle>;
using SerializerHandle = Handle<INodeSerializer, AcnCloseSerializationContext>;
using DeserializerHandle = Handle<INodeDeserializer, AcnCloseDeserializationContext>;
using ErrorHandle = Handle<IErrorInfo, EhReleaseErrorContext>;
using StorageHandle = Handle<INodeStorage, StgCloseStorageHandle>;

inline void TREEVAULT_CALL CloseGroup(IOperationsGroup* group) {
    StgCloseOperationsGroup(nullptr, group);
}
inline void TREEVAULT_CALL CloseRetrieval(IRetrievalContext* context) {
    StgCloseRetrivalContext(nullptr, context);
}

using GroupHandle = Handle<IOperationsGroup, CloseGroup>;
using RetrievalHandle = Handle<IRetrievalContext, CloseRetrieval>;

} // namespace treevault::program

#endif
