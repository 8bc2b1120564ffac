// SPDX-License-Identifier: MIT
// Files by their wide names.
#include "files.h"

#include "widetext.h"

#include <windows.h>

#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace treevault::program {

namespace {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

std::error_code LastSystemError() {
    return {static_cast<int>(GetLastError()), std::system_category()};
}

std::FILE* Open(const std::string& name, const wchar_t* mode, std::error_code& error) {
    std::FILE* file = _wfopen(ToWide(name).c_str(), mode);
    if (file == nullptr)
        error = LastError();
    return file;
}

bool IsPlainFile(const std::wstring& name) {
    const HANDLE file = CreateFileW(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool plain = GetFileType(file) == FILE_TYPE_DISK;
    CloseHandle(file);
    return plain;
}

} // namespace

std::FILE* OpenForReading(const std::string& name, std::error_code& error) {
    return Open(name, L"rbN", error);
}

std::FILE* OpenForWriting(const std::string& name, std::error_code& error) {
    return Open(name, L"wbN", error);
}

uint64_t FileSize(std::FILE* file) {
    LARGE_INTEGER size{};
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
    if (GetFileType(handle) != FILE_TYPE_DISK || !GetFileSizeEx(handle, &size))
        return 0;
    return static_cast<uint64_t>(size.QuadPart);
}

Destination FindDestination(const std::string& name, std::error_code& error) {
    const std::wstring wide = ToWide(name);
    const DWORD attributes = GetFileAttributesW(wide.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return {name, true};
    if (attributes & FILE_ATTRIBUTE_READONLY)
        error = std::make_error_code(std::errc::permission_denied);
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        error = std::make_error_code(std::errc::is_a_directory);
    return {name, IsPlainFile(wide)};
}

std::FILE* CreateBeside(const std::string& name, std::string& temporary, std::error_code& error) {
    constexpr unsigned Attempts = 100;
    const std::string stem =
        name + "." + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(GetTickCount());
    for (unsigned i = 0; i < Attempts; ++i) {
        const std::string candidate = stem + "-" + std::to_string(i) + ".tmp";
        const int descriptor =
            _wopen(ToWide(candidate).c_str(), _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY,
                   _S_IREAD | _S_IWRITE);
        if (descriptor >= 0) {
            temporary = candidate;
            return _fdopen(descriptor, "wb");
        }
        error = LastError();
        if (errno != EEXIST)
            return nullptr;
    }
    return nullptr;
}

std::error_code FlushToDisk(std::FILE* file) {
    if (std::fflush(file) != 0 || _commit(_fileno(file)) != 0)
        return LastError();
    return {};
}

std::error_code MoveOver(const std::string& from, const std::string& to) {
    if (!MoveFileExW(ToWide(from).c_str(), ToWide(to).c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return LastSystemError();
    return {};
}

void RemoveFile(const std::string& name) noexcept {
    DeleteFileW(ToWide(name).c_str());
}

} // namespace treevault::program
