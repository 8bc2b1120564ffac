// SPDX-License-Identifier: MIT
// The identity under which a thread touches files of the process.
#ifndef TREEVAULT_COMMON_IMPERSONATION_H
#define TREEVAULT_COMMON_IMPERSONATION_H

namespace treevault {

// While it lives, a thread that acts as somebody else acts as its process does. A thread whose
// identity cannot be given back must not go on, so that the process is ended.
class ImpersonationRevertGuard {
public:
    // Does nothing unless `enters`.
    explicit ImpersonationRevertGuard(bool enters) noexcept;
    ~ImpersonationRevertGuard();
    ImpersonationRevertGuard(const ImpersonationRevertGuard&) = delete;
    ImpersonationRevertGuard& operator=(const ImpersonationRevertGuard&) = delete;

private:
    void* Token = nullptr; // what the thread goes back to
};

} // namespace treevault

#endif
