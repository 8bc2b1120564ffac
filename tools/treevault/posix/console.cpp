// SPDX-License-Identifier: MIT
// Command line and standard streams, where all text is UTF-8 already.
#include "console.h"

#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace treevault::program {

std::vector<std::string> CommandLineArguments(int argc, char** argv) {
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

StreamSetup::StreamSetup() = default;
StreamSetup::~StreamSetup() = default;

bool IsTerminal(std::FILE* stream) {
    const char* kind = std::getenv("TERM");
    return kind != nullptr && std::string_view(kind) != "dumb" && isatty(fileno(stream)) == 1;
}

} // namespace treevault::program
