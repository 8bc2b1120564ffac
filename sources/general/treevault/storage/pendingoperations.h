// SPDX-License-Identifier: MIT
// An operations group: what to do, and how to undo what was done.
#ifndef TREEVAULT_STORAGE_PENDINGOPERATIONS_H
#define TREEVAULT_STORAGE_PENDINGOPERATIONS_H

#include "common/components/componentobject.h"
#include "common/inlinememory.h"

#include <cstddef>
#include <memory>

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

    // The memory of a step is the group's.
    struct DestroyUndo {
        CPendingOperations* Group = nullptr;
        void operator()(Step* step) const noexcept { Group->Destroy(step); }
    };
    using Undo = std::unique_ptr<Step, DestroyUndo>;

    explicit CPendingOperations(CMemoryStorage& storage) : Storage(storage) {}

    HRESULT Lookup(const GUID* iid, void** out) noexcept;

    template <class Callable>
    void AddOperation(Callable&& operation) {
        Step* const step = MakeStep(OperationMemory.Resource(), std::move(operation));
        *OperationsEnd = step;
        OperationsEnd = &step->Next;
    }

    // Is made before the change that it undoes, so that nothing can fail any more when it is added.
    template <class Callable>
    Undo MakeUndo(Callable&& callable) {
        Step* const step = MakeStep(UndoMemory.Resource(), std::move(callable));
        ++UndoSteps;
        return Undo(step, {this});
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

    template <class Callable>
    static Step* MakeStep(std::pmr::memory_resource* memory, Callable&& callable) {
        using Made = Calling<Callable>;
        return new (memory->allocate(sizeof(Made), alignof(Made))) Made(std::move(callable));
    }

    Undo TakeUndo() noexcept { return Undo(std::exchange(UndoList, UndoList->Next), {this}); }
    void Destroy(Step* undo) noexcept;
    void DropOperations() noexcept;
    void DropUndoList() noexcept;

    template <class WriteError>
    void GiveUpRollback(const WriteError& writeError) noexcept;

    CMemoryStorage& Storage;

    // Steps lie side by side; the first needs no block.
    InlineMemory<160> OperationMemory; // until the group goes
    Step* Operations = nullptr;        // in the order of adding; one that runs may add another
    Step** OperationsEnd = &Operations;

    InlineMemory<96> UndoMemory; // until there is no step in it
    size_t UndoSteps = 0;
    Step* UndoList = nullptr; // the last one first
};

} // namespace treevault

#endif
