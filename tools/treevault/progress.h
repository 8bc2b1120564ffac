// SPDX-License-Identifier: MIT
// A line on the terminal that tells how far a long operation is.
#ifndef TREEVAULT_PROGRAM_PROGRESS_H
#define TREEVAULT_PROGRAM_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

namespace treevault::program {

// Only what is larger than this is worth a line.
inline constexpr uint64_t LargeSize = uint64_t{4} << 20;

// Writes nothing unless standard error is a terminal. The line goes with the object.
class Progress {
public:
    explicit Progress(std::string label);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // For something large, at once. `total` is 0 when it is not known.
    void Bytes(uint64_t done, uint64_t total);

    // For something that turns out to take its time.
    void Count(uint64_t done);

private:
    bool IsDue();
    void Show(const std::string& state);

    std::string Label;
    bool IsWanted;
    bool IsShown = false;
    std::chrono::steady_clock::time_point Start;
    std::chrono::steady_clock::time_point Next;
};

} // namespace treevault::program

#endif
