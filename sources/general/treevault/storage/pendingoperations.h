// SPDX-License-Identifier: MIT
// An operations group: what to do, and how to undo what was done.
#ifndef TREEVAULT_STORAGE_PENDINGOPERATIONS_H
#define TREEVAULT_STORAGE_PENDINGOPERATIONS_H

#include "common/components/componentobject.h"

#include <cstddef>
#include <memory>
#include <memory_resource>

namespace treevault {

class CMemoryStorage;

inline constexpr GUID IID_PendingOperations = {
    0x3F898398, 0x2884, 0x4C2E, {0xBD, 0xDE, 0x49, 0xC4, 0xEB, 0x2F, 0xF7, 0xEE}};

// Has no lock: one thread at a time fills it or runs it. It must not outlive its storage.
class CPendingOperations : public ComponentHead {
public:
    // Something to do. It owns what it needs; failures are raised.
    class Step {
    public:
        virtual ~Step() = default;
        virtual void Run() = 0;

    private:
        friend class CPendingOperations;
        Step* Next = nullptr;
    };
    using Undo = std::unique_ptr<Step>;

    explicit CPendingOperations(CMemoryStorage& storage) : Storage(storage) {}

    HRESULT Lookup(const GUID* iid, void** out) noexcept;

    template <class Callable>
    void AddOperation(Callable&& operation) {
        void* const memory = Memory.allocate(sizeof(Calling<Callable>), alignof(Calling<Callable>));
        Step* const step = new (memory) Calling<Callable>(std::move(operation));
        *OperationsEnd = step;
        OperationsEnd = &step->Next;
    }

    // Is made before the change that it undoes, so that nothing can fail any more when it is added.
    template <class Callable>
    static Undo MakeUndo(Callable&& callable) {
        return std::make_unique<Calling<Callable>>(std::move(callable));
    }

    // None is left out.
    void AddUndo(Undo undo) noexcept {
        if (Step* const step = undo.release())
            step->Next = std::exchange(UndoList, step);
    }

    // Runs the operations in order and counts the run. A failure undoes what was done and is raised
    // again.
    void Execute();

    // Undoes from the last change to the first. A failing step is logged and ends it.
    void Rollback();

protected:
    ~CPendingOperations() {
        DropOperations();
        DropUndoList();
    }

private:
    template <class Callable>
    class Calling final : public Step {
    public:
        explicit Calling(Callable&& what) : What(std::move(what)) {}
        void Run() override { What(); }

    private:
        Callable What;
    };

    Undo TakeUndo() noexcept { return Undo(std::exchange(UndoList, UndoList->Next)); }
    void DropOperations() noexcept;
    void DropUndoList() noexcept;

    template <class WriteError>
    void GiveUpRollback(const WriteError& writeError) noexcept;

    CMemoryStorage& Storage;

    // Operations lie side by side, the first one inside the group, until the group goes.
    alignas(std::max_align_t) std::byte FirstMemory[96];
    std::pmr::monotonic_buffer_resource Memory{FirstMemory, sizeof FirstMemory,
                                               std::pmr::new_delete_resource()};

    Step* Operations = nullptr; // in the order of adding; one that runs may add another
    Step** OperationsEnd = &Operations;
    Step* UndoList = nullptr; // the last one first
};

} // namespace treevault

#endif
