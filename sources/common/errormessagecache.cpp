// SPDX-License-Identifier: MIT
// Looking up and keeping of texts.
#include "common/errormessagecache.h"

namespace treevault {

namespace {

class SharedGuard {
public:
    explicit SharedGuard(ReaderWriterLock& lock) noexcept : Lock(lock) { Lock.EnterShared(); }
    ~SharedGuard() { Lock.LeaveShared(); }
    SharedGuard(const SharedGuard&) = delete;
    SharedGuard& operator=(const SharedGuard&) = delete;

private:
    ReaderWriterLock& Lock;
};

class ExclusiveGuard {
public:
    explicit ExclusiveGuard(ReaderWriterLock& lock) : Lock(lock) { Lock.EnterExclusive(); }
    ~ExclusiveGuard() { Lock.LeaveExclusive(); }
    ExclusiveGuard(const ExclusiveGuard&) = delete;
    ExclusiveGuard& operator=(const ExclusiveGuard&) = delete;

private:
    ReaderWriterLock& Lock;
};

} // namespace

bool ErrorMessageCache::Find(uint32_t code, WideText& text) const {
    const SharedGuard guard(Lock);
    const auto found = Texts.find(code);
    if (found == Texts.end())
        return false;
    text = found->second;
    return true;
}

void ErrorMessageCache::Insert(uint32_t code, const WideText& text) {
    const ExclusiveGuard guard(Lock);
    Texts.emplace(code, text);
}

} // namespace treevault
