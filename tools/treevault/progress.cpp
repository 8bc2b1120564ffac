// SPDX-License-Identifier: MIT
#include "progress.h"

#include "console.h"

#include <utility>

namespace treevault::program {

namespace {

constexpr std::chrono::milliseconds Interval{100};
constexpr std::chrono::milliseconds Patience{500};

std::string Mebibytes(uint64_t bytes) {
    return std::to_string(bytes >> 20) + " MiB";
}

} // namespace

Progress::Progress(std::string label)
    : Label(std::move(label)), IsWanted(IsTerminal(stderr)),
      Start(std::chrono::steady_clock::now()), Next(Start) {}

Progress::~Progress() {
    if (IsShown)
        std::fputs("\r\x1B[K", stderr);
}

void Progress::Bytes(uint64_t done, uint64_t total) {
    if (!IsWanted || (done <= LargeSize && total <= LargeSize) || !IsDue())
        return;
    if (total == 0)
        Show(Mebibytes(done));
    else
        Show(Mebibytes(done) + " of " + Mebibytes(total));
}

void Progress::Count(uint64_t done) {
    if (IsWanted && IsDue() && Next - Start > Patience)
        Show(std::to_string(done));
}

bool Progress::IsDue() {
    const auto now = std::chrono::steady_clock::now();
    if (now < Next)
        return false;
    Next = now + Interval;
    return true;
}

void Progress::Show(const std::string& state) {
    std::fprintf(stderr, "\r%s: %s\x1B[K", Label.c_str(), state.c_str());
    std::fflush(stderr);
    IsShown = true;
}

} // namespace treevault::program
