// SPDX-License-Identifier: MIT
// Running and undoing of an operations group.
#include "general/treevault/storage/pendingoperations.h"

#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/storage/memorystorage.h"

#include <new>

namespace treevault {

HRESULT CPendingOperations::Lookup(const GUID* iid, void** out) noexcept {
    return LookupInterface(iid, out, this, InterfaceEntry{IID_PendingOperations, this});
}

void CPendingOperations::DropOperations() noexcept {
    while (Operations)
        std::exchange(Operations, Operations->Next)->~Step();
}

void CPendingOperations::DropUndoList() noexcept {
    while (UndoList)
        TakeUndo();
}

void CPendingOperations::Destroy(Step* undo) noexcept {
    undo->~Step();
    if (--UndoSteps == 0)
        UndoMemory.Release();
}

void CPendingOperations::Execute() {
    try {
        const FunctionTrace trace(TV_W("CPendingOperations::Execute"), SeverityDbg2);
        for (Step* step = Operations; step; step = step->Next)
            step->Run();
        Storage.CountRun();
    } catch (const HRX& failure) {
        LogTraced(SeverityDbg, [&](WideStream& line) {
            line << TV_W("CPendingOperations::Execute failed: ");
            AppendErrorText(line, failure);
        });
        Rollback();
        throw;
    } catch (...) {
        Rollback();
        throw;
    }
}

// What caused the rollback goes on to the caller.
template <class WriteError>
void CPendingOperations::GiveUpRollback(const WriteError& writeError) noexcept {
    LogTraced(SeverityErr, [&](WideStream& line) {
        line << TV_W("CPendingOperations::Rollback failed: Rollback failed: ");
        writeError(line);
    });
    DropUndoList();
}

void CPendingOperations::Rollback() {
    if (!UndoList)
        return;
    const FunctionTrace trace(TV_W("Rolling the changes back"), SeverityDbg);
    try {
        while (UndoList)
            TakeUndo()->Run();
    } catch (const HRX& failure) {
        GiveUpRollback([&](WideStream& line) { AppendErrorText(line, failure); });
    } catch (const std::bad_alloc&) {
        GiveUpRollback([](WideStream& line) { AppendErrorText(line, E_OUTOFMEMORY); });
    }
}

} // namespace treevault
