// SPDX-License-Identifier: MIT
#include "output.h"

#include "console.h"
#include "failure.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace treevault::program {

namespace {

constexpr size_t PendingLimit = size_t{1} << 16;

std::string_view Sequence(Colour colour) {
    switch (colour) {
    case Colour::Name:
        return "\x1B[1m";
    case Colour::Type:
        return "\x1B[36m";
    case Colour::Attribute:
        return "\x1B[32m";
    case Colour::Value:
        return "\x1B[33m";
    default:
        return "\x1B[2m";
    }
}

} // namespace

void Output::Write(std::string_view text) {
    Pending += text;
    if (Pending.size() >= PendingLimit)
        Flush();
}

void Output::Write(Colour colour, std::string_view text) {
    if (HasColours)
        Write(Sequence(colour));
    Write(text);
    if (HasColours)
        Write("\x1B[0m");
}

void Output::Flush() {
    errno = 0;
    const size_t written = std::fwrite(Pending.data(), 1, Pending.size(), Stream);
    if (written != Pending.size() || std::fflush(Stream) != 0)
        throw DataFailure(
            std::string(Stream == stdout ? "standard output" : "standard error") +
            ": cannot write: " + std::generic_category().message(errno != 0 ? errno : EIO));
    Pending.clear();
}

bool WantsColours() {
    const char* refused = std::getenv("NO_COLOR");
    return (refused == nullptr || *refused == '\0') && IsTerminal(stdout);
}

} // namespace treevault::program
