// SPDX-License-Identifier: MIT
#include "inputfile.h"

#include "failure.h"
#include "files.h"

#include <cerrno>

namespace treevault::program {

namespace {

constexpr size_t PieceSize = size_t{1} << 20;

} // namespace

std::string InputTitle(const std::string& name) {
    return name == StandardStream ? "standard input" : name;
}

InputFile::InputFile(const std::string& name)
    : Title(InputTitle(name)), File(stdin), Piece(PieceSize), ReadProgress("reading " + Title) {
    if (name == StandardStream)
        return;
    std::error_code error;
    File = OpenForReading(name, error);
    if (File == nullptr)
        throw DataFailure(Title + ": cannot open: " + error.message());
    Total = FileSize(File);
}

InputFile::~InputFile() {
    if (File != stdin)
        std::fclose(File);
}

HRESULT TREEVAULT_CALL InputFile::Read(const char** text, uint64_t* size, uint32_t* end,
                                       void* inputFile) {
    try {
        return static_cast<InputFile*>(inputFile)->ReadPiece(text, size, end);
    } catch (...) {
        return E_OUTOFMEMORY; // only the line of progress allocates
    }
}

HRESULT InputFile::ReadPiece(const char** text, uint64_t* size, uint32_t* end) {
    errno = 0;
    const size_t read = std::fread(Piece.data(), 1, Piece.size(), File);
    if (std::ferror(File)) {
        ReadError = errno != 0 ? errno : EIO;
        return E_FAIL;
    }
    Done += read;
    ReadProgress.Bytes(Done, Total);
    *text = Piece.data();
    *size = read;
    *end = read < Piece.size();
    return S_OK;
}

void InputFile::CheckRead() const {
    if (ReadError != 0)
        throw DataFailure(Title + ": cannot read: " + std::generic_category().message(ReadError));
}

} // namespace treevault::program
