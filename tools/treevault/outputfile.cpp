// SPDX-License-Identifier: MIT
#include "outputfile.h"

#include "failure.h"
#include "files.h"
#include "inputfile.h"
#include "progress.h"

#include <algorithm>
#include <cerrno>

namespace treevault::program {

namespace {

constexpr size_t PieceSize = size_t{1} << 20;

std::string LastError() {
    return std::generic_category().message(errno != 0 ? errno : EIO);
}

} // namespace

OutputFile::OutputFile(const std::string& name) : Title(name), File(stdout) {
    if (name == StandardStream)
        Title = "standard output";
    else
        Open(name);
}

OutputFile::~OutputFile() {
    if (File != nullptr && File != stdout)
        std::fclose(File);
    if (!Temporary.empty())
        RemoveFile(Temporary);
}

void OutputFile::Open(const std::string& name) {
    std::error_code error;
    const Destination destination = FindDestination(name, error);
    if (error)
        Fail("cannot write", error.message());
    Target = destination.Name;
    File = destination.IsReplaceable ? CreateBeside(Target, Temporary, error)
                                     : OpenForWriting(Target, error);
    if (File == nullptr)
        Fail("cannot create", error.message());
}

void OutputFile::Write(std::string_view text) {
    Progress progress("writing " + Title);
    const uint64_t total = text.size();
    errno = 0;
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, PieceSize);
        if (std::fwrite(piece.data(), 1, piece.size(), File) != piece.size())
            Fail("cannot write", LastError());
        text.remove_prefix(piece.size());
        progress.Bytes(total - text.size(), total);
    }
}

void OutputFile::Commit() {
    errno = 0;
    if (Temporary.empty()) {
        if (std::fflush(File) != 0)
            Fail("cannot write", LastError());
        Close();
        return;
    }
    if (const std::error_code error = FlushToDisk(File))
        Fail("cannot write", error.message());
    Close();
    if (const std::error_code error = MoveOver(Temporary, Target))
        Fail("cannot replace", error.message());
    Temporary.clear();
}

void OutputFile::Close() {
    if (File == stdout)
        return;
    std::FILE* file = File;
    File = nullptr;
    if (std::fclose(file) != 0)
        Fail("cannot write", LastError());
}

void OutputFile::Fail(const std::string& what, const std::string& why) const {
    throw DataFailure(Title + ": " + what + ": " + why);
}

} // namespace treevault::program
