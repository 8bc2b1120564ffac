// SPDX-License-Identifier: MIT
// A sink that prints what a storage tells it, a line for each call, and can refuse a change.
#ifndef TREEVAULT_PROGRAM_CHANGEWATCHER_H
#define TREEVAULT_PROGRAM_CHANGEWATCHER_H

#include "output.h"
#include "widetext.h"

#include <treevault/treevault.h>

#include <exception>
#include <functional>

namespace treevault::program {

class ChangeWatcher final : public IModifySink {
public:
    // Prints nothing without `lines`, and refuses nothing without a path.
    ChangeWatcher(Output* lines, WideText vetoedPath)
        : Lines(lines), VetoedPath(std::move(vetoedPath)) {}
    ChangeWatcher(const ChangeWatcher&) = delete;
    ChangeWatcher& operator=(const ChangeWatcher&) = delete;

    bool HasVetoed() const { return IsVetoed; }

    // To be called when a group is over: throws what kept the watcher from printing, which has
    // failed the group.
    void RethrowProblem() const;

    // Whoever makes the object keeps it.
    uint32_t TREEVAULT_CALL AddRef() override { return 1; }
    uint32_t TREEVAULT_CALL Release() override { return 1; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID* iid, void** out) override;

    HRESULT TREEVAULT_CALL OnStart() override;
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* notification) override;
    HRESULT TREEVAULT_CALL OnPreCommit() override;
    void TREEVAULT_CALL OnFinish(int32_t result) override;

private:
    HRESULT Print(const std::function<std::string()>& makeLine);

    Output* Lines;
    WideText VetoedPath;
    bool IsVetoed = false;
    std::exception_ptr Problem;
};

} // namespace treevault::program

#endif
