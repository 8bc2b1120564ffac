// SPDX-License-Identifier: MIT
// A file, or standard input, that is handed to the library piece by piece.
#ifndef TREEVAULT_PROGRAM_INPUTFILE_H
#define TREEVAULT_PROGRAM_INPUTFILE_H

#include "progress.h"

#include <treevault/platform.h>

#include <cstdio>
#include <string>
#include <vector>

namespace treevault::program {

// The name that stands for a standard stream.
inline constexpr const char* StandardStream = "-";

// The name of an input as messages show it.
std::string InputTitle(const std::string& name);

class InputFile {
public:
    // Throws DataFailure if the file cannot be opened.
    explicit InputFile(const std::string& name);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // A NodeTextReadCallback, whose context is the file.
    static HRESULT TREEVAULT_CALL Read(const char** text, uint64_t* size, uint32_t* end,
                                       void* inputFile);

    // Throws DataFailure if reading failed.
    void CheckRead() const;

private:
    HRESULT ReadPiece(const char** text, uint64_t* size, uint32_t* end);

    std::string Title;
    std::FILE* File;
    uint64_t Total = 0;
    uint64_t Done = 0;
    int ReadError = 0;
    std::vector<char> Piece;
    Progress ReadProgress;
};

} // namespace treevault::program

#endif
