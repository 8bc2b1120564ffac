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
        virtual ~Step() = default; // frees what it needs, but not itself
        virtual void Run() = 0;

    private:
        friend class CPendingOperations;
        Step* Next = nullptr;
    };
    struct EndStep {
        void operator()(Step* step) const noexcept { step->~Step(); }
    };
    using StepPtr = std::unique_ptr<Step, EndStep>;

    explicit CPendingOperations(CMemoryStorage& storage) : Storage(storage) {}

    HRESULT Lookup(const GUID* iid, void** out) noexcept;

    // A step must end before its group does.
    template <class Callable>
    StepPtr MakeStep(Callable&& callable) {
        class Calling final : public Step {
        public:
            explicit Calling(Callable&& what) : What(std::move(what)) {}
            void Run() override { What(); }

        private:
            Callable What;
        };
        void* const memory = Steps.allocate(sizeof(Calling), alignof(Calling));
        return StepPtr(new (memory) Calling(std::move(callable)));
    }

    template <class Callable>
    void AddOperation(Callable&& operation) {
        Step* const step = MakeStep(std::move(operation)).release();
        *OperationsEnd = step;
        OperationsEnd = &step->Next;
    }

    // The step was made before the change that it undoes, so that nothing can fail any more. None
    // is left out.
    void AddUndo(StepPtr undo) noexcept {
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
        Drop(Operations);
        Drop(UndoList);
    }

private:
    static void Drop(Step*& list) noexcept;

    template <class WriteError>
    void GiveUpRollback(const WriteError& writeError) noexcept;

    CMemoryStorage& Storage;

    // Steps lie side by side, the first ones inside the group, and are given back with it.
    alignas(std::max_align_t) std::byte FirstSteps[256];
    std::pmr::monotonic_buffer_resource Steps{FirstSteps, sizeof FirstSteps};

    Step* Operations = nullptr; // in the order of adding; one that runs may add another
    Step** OperationsEnd = &Operations;
    Step* UndoList = nullptr; // the last one first
};

} // namespace treevault

#endif
