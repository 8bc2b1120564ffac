// SPDX-License-Identifier: MIT
// Where a rewritten document goes. A plain file is replaced when the new one is complete and on
// the disk, and not before.
#ifndef TREEVAULT_PROGRAM_OUTPUTFILE_H
#define TREEVAULT_PROGRAM_OUTPUTFILE_H

#include <cstdio>
#include <string>
#include <string_view>

namespace treevault::program {

class OutputFile {
public:
    // "-" is standard output. A device or a pipe is written to directly. Throws DataFailure.
    explicit OutputFile(const std::string& name);

    // What was not committed goes, and the old file stays.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Each throws DataFailure.
    void Write(std::string_view text);
    void Commit();

private:
    void Open(const std::string& name);
    void Close();
    [[noreturn]] void Fail(const std::string& what, const std::string& why) const;

    std::string Title;
    std::string Target;    // the file to replace
    std::string Temporary; // what is moved there; empty when the target is written directly
    std::FILE* File = nullptr;
};

} // namespace treevault::program

#endif
