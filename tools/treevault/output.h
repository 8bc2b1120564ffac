// SPDX-License-Identifier: MIT
// Standard output, or standard error: buffered, coloured where it is wanted, and checked.
#ifndef TREEVAULT_PROGRAM_OUTPUT_H
#define TREEVAULT_PROGRAM_OUTPUT_H

#include <cstdio>
#include <string>
#include <string_view>

namespace treevault::program {

enum class Colour { Name, Type, Attribute, Value, Remark };

class Output {
public:
    explicit Output(bool colours = false, std::FILE* stream = stdout)
        : HasColours(colours), Stream(stream) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Write(std::string_view text);
    void Write(Colour colour, std::string_view text);

    // To be called last. This and Write throw DataFailure when the stream takes no more.
    void Flush();

private:
    bool HasColours;
    std::FILE* Stream;
    std::string Pending;
};

// Whether standard output is to be coloured by itself: it is a terminal, and the variable NO_COLOR
// is not set or empty.
bool WantsColours();

} // namespace treevault::program

#endif
