// SPDX-License-Identifier: MIT
#include "changewatcher.h"

#include "showntext.h"

namespace treevault::program {

namespace {

std::string Verb(ModifyMask mask) {
    switch (mask) {
    case ModifyNodeDeleted:
        return "deleted";
    case ModifyNodeCreated:
        return "created";
    case ModifyNodeChanged:
        return "changed";
    case ModifyChildAdded:
        return "added below";
    case ModifyChildDeleted:
        return "removed below";
    default:
        return "added and removed below";
    }
}

// As "changed \a\b @x @y".
std::string Describe(const ModifyNotification& notification) {
    std::string line = "  " + Verb(notification.Mask) + " " + Plain(notification.Path);
    const WCHAR* name = notification.ChangedAttributes;
    while (name != nullptr && *name != 0) {
        const WideView view(name);
        line += " @" + Plain(view);
        name += view.size() + 1;
    }
    return line;
}

} // namespace

HRESULT TREEVAULT_CALL ChangeWatcher::QueryInterface(const GUID*, void**) {
    return E_NOINTERFACE;
}

HRESULT TREEVAULT_CALL ChangeWatcher::OnStart() {
    return Print([] { return std::string("start"); });
}

HRESULT TREEVAULT_CALL ChangeWatcher::OnModified(const ModifyNotification* notification) {
    const HRESULT result = Print([&] { return Describe(*notification); });
    if (FAILED(result) || VetoedPath.empty() || notification->Path != VetoedPath)
        return result;
    IsVetoed = true;
    Print([&] { return "  veto " + Plain(VetoedPath); });
    return E_ABORT;
}

HRESULT TREEVAULT_CALL ChangeWatcher::OnPreCommit() {
    return Print([] { return std::string("pre-commit"); });
}

void TREEVAULT_CALL ChangeWatcher::OnFinish(int32_t result) {
    Print([&] { return std::string(result != 0 ? "finish: success" : "finish: failure"); });
}

void ChangeWatcher::RethrowProblem() const {
    if (Problem)
        std::rethrow_exception(Problem);
}

// A line is seen when the change is made, not when a buffer is full. No exception may cross the
// library.
HRESULT ChangeWatcher::Print(const std::function<std::string()>& makeLine) {
    if (Lines == nullptr)
        return S_OK;
    try {
        RethrowProblem();
        Lines->Write(makeLine() + "\n");
        Lines->Flush();
        return S_OK;
    } catch (...) {
        Problem = std::current_exception();
        return E_FAIL;
    }
}

} // namespace treevault::program
