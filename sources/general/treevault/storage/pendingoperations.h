// SPDX-License-Identifier: MIT
// An operations group: what to do, and how to undo what was done.
#ifndef TREEVAULT_STORAGE_PENDINGOPERATIONS_H
#define TREEVAULT_STORAGE_PENDINGOPERATIONS_H

#include "common/components/componentobject.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <vector>

namespace treevault {

class CMemoryStorage;

inline constexpr GUID IID_PendingOperations = {
    0x3F898398, 0x2884, 0x4C2E, {0xBD, 0xDE, 0x49, 0xC4, 0xEB, 0x2F, 0xF7, 0xEE}};

// Has no lock: one thread at a time fills it or runs it. It must not outlive its storage.
class CPendingOperations : public ComponentHead {
public:
    // Owns what it captures. Failures are raised.
    using Callable = std::function<void()>;

    explicit CPendingOperations(CMemoryStorage& storage) : Storage(storage) {}

    HRESULT Lookup(const GUID* iid, void** out) noexcept;

    void AddOperation(Callable operation) { Operations.push_back(std::move(operation)); }

    // Makes room for an undo step, so that adding it after the change cannot fail.
    Callable PrepareUndo(Callable undo) {
        if (UndoList.size() == UndoList.capacity())
            UndoList.reserve(std::max<size_t>(16, 2 * UndoList.size()));
        return undo;
    }

    // An empty step is left out.
    void AddUndo(Callable undo) {
        if (undo)
            UndoList.push_back(std::move(undo));
    }

    // Runs the operations in order and counts the run. A failure undoes what was done and is raised
    // again.
    void Execute();

    // Undoes from the last change to the first. A failing step is logged and ends it.
    void Rollback();

protected:
    ~CPendingOperations() = default;

private:
    template <class WriteError>
    void GiveUpRollback(const WriteError& writeError) noexcept;

    CMemoryStorage& Storage;
    std::deque<Callable> Operations; // stays in place while an operation adds to it
    std::vector<Callable> UndoList;
};

} // namespace treevault

#endif
