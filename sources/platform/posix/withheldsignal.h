// SPDX-License-Identifier: MIT
// Signals by which a failing write would end the process.
#ifndef TREEVAULT_PLATFORM_POSIX_WITHHELDSIGNAL_H
#define TREEVAULT_PLATFORM_POSIX_WITHHELDSIGNAL_H

#include <csignal>
#include <ctime>
#include <pthread.h>

namespace treevault {

// While it lives, a write of this thread that would raise the signal fails with its error code and
// nothing else: neither the default action nor a handler of the host's sees it.
class WithheldSignal {
public:
    explicit WithheldSignal(int signal) noexcept {
        sigset_t pending;
        sigpending(&pending);
        WasPending = sigismember(&pending, signal) == 1;
        sigemptyset(&Withheld);
        sigaddset(&Withheld, signal);
        pthread_sigmask(SIG_BLOCK, &Withheld, &Before);
    }
    ~WithheldSignal() {
        const timespec now{};
        // One that waited before is not ours to take.
        if (!WasPending)
            sigtimedwait(&Withheld, nullptr, &now);
        pthread_sigmask(SIG_SETMASK, &Before, nullptr);
    }
    WithheldSignal(const WithheldSignal&) = delete;
    WithheldSignal& operator=(const WithheldSignal&) = delete;

private:
    sigset_t Withheld;
    sigset_t Before;
    bool WasPending;
};

} // namespace treevault

#endif
