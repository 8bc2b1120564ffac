// SPDX-License-Identifier: MIT
// The error code that the platform keeps for each thread.
#ifndef TREEVAULT_PLATFORM_LASTERROR_H
#define TREEVAULT_PLATFORM_LASTERROR_H

namespace treevault {

// Leaves the code as it was: what happens while this lives does not disturb who asks for it later.
class LastErrorKeeper {
public:
    LastErrorKeeper() noexcept;
    ~LastErrorKeeper();
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

private:
    const unsigned long Code;
};

} // namespace treevault

#endif
