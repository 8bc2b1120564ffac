// SPDX-License-Identifier: MIT
// Taking the token off a thread and putting it back.
#include "common/impersonation.h"

#include "common/debugreport.h"
#include "platform/threadtoken.h"

#include <cstdlib>

namespace treevault {
namespace {

void Report(const WCHAR* what, uint32_t code) noexcept {
    DebugReport([&](WideStream& text) {
        text << TV_W("ImpersonationRevertGuard: ") << what << TV_W(" ") << ErrorInReport(code)
             << TV_W("\n");
    });
}

} // namespace

ImpersonationRevertGuard::ImpersonationRevertGuard(bool enters) noexcept {
    if (!enters)
        return;
    void* token = nullptr;
    if (const uint32_t code = OpenTokenOfThread(token); code != 0) {
        if (code != NoThreadToken)
            Report(TV_W("cannot get current thread token"), code);
        return;
    }
    if (const uint32_t code = SetTokenOfThread(nullptr); code != 0) {
        Report(TV_W("cannot revert thread token"), code);
        CloseToken(token);
        return;
    }
    Token = token;
}

ImpersonationRevertGuard::~ImpersonationRevertGuard() {
    if (!Token)
        return;
    const uint32_t code = SetTokenOfThread(Token);
    CloseToken(Token);
    if (code != 0) {
        Report(TV_W("cannot restore token back"), code);
        std::_Exit(EXIT_FAILURE);
    }
}

} // namespace treevault
