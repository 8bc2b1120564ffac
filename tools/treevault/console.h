// SPDX-License-Identifier: MIT
// What the program asks of the platform's command line and standard streams.
#ifndef TREEVAULT_PROGRAM_CONSOLE_H
#define TREEVAULT_PROGRAM_CONSOLE_H

#include <cstdio>
#include <string>
#include <vector>

namespace treevault::program {

// The arguments in UTF-8, without the name of the program.
std::vector<std::string> CommandLineArguments(int argc, char** argv);

// Makes the standard streams carry bytes as they are, and a terminal understand UTF-8, until the
// object goes.
class StreamSetup {
public:
    StreamSetup();
    ~StreamSetup();
    StreamSetup(const StreamSetup&) = delete;
    StreamSetup& operator=(const StreamSetup&) = delete;

private:
    unsigned FormerCodePage = 0;
};

// Whether `stream` is a terminal that obeys colour and cursor sequences.
bool IsTerminal(std::FILE* stream);

} // namespace treevault::program

#endif
