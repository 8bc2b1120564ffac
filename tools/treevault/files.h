// SPDX-License-Identifier: MIT
// What the program asks of the platform's files. Names are UTF-8.
#ifndef TREEVAULT_PROGRAM_FILES_H
#define TREEVAULT_PROGRAM_FILES_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <system_error>

namespace treevault::program {

// Each gives null and sets `error` on failure. Files are opened for bytes.
std::FILE* OpenForReading(const std::string& name, std::error_code& error);
std::FILE* OpenForWriting(const std::string& name, std::error_code& error);

// Size in bytes of a plain file; 0 for anything else.
uint64_t FileSize(std::FILE* file);

// The file that a name leads to, and whether another file can be moved into its place: it is a
// plain file, or there is nothing yet.
struct Destination {
    std::string Name;
    bool IsReplaceable;
};

// Sets `error` when the file is there and must not be written.
Destination FindDestination(const std::string& name, std::error_code& error);

// Creates a file of a new name in the folder of `name`, with the permissions of the file that it is
// to replace. `temporary` receives its name.
std::FILE* CreateBeside(const std::string& name, std::string& temporary, std::error_code& error);

// Has everything written to `file` reach the disk.
std::error_code FlushToDisk(std::FILE* file);

// Puts one file in the place of another, or fails and leaves both as they are.
std::error_code MoveOver(const std::string& from, const std::string& to);

void RemoveFile(const std::string& name) noexcept;

} // namespace treevault::program

#endif
