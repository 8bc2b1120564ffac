// SPDX-License-Identifier: MIT
// Files that are opened for nothing but appending: the system finds the end for each write.
#include "platform/appendfile.h"

namespace treevault {

uint32_t AppendFile::Open(const WideText& path) {
    const HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    const DWORD code = GetLastError();
    if (file == INVALID_HANDLE_VALUE)
        return code;
    Handle = file;
    Created = code != ERROR_ALREADY_EXISTS;
    return ERROR_SUCCESS;
}

void AppendFile::Close() noexcept {
    if (Handle)
        CloseHandle(std::exchange(Handle, nullptr));
}

uint32_t AppendFile::Duplicate(AppendFile& copy) const noexcept {
    const HANDLE process = GetCurrentProcess();
    HANDLE file = nullptr;
    if (!DuplicateHandle(process, Handle, process, &file, 0, FALSE, DUPLICATE_SAME_ACCESS))
        return GetLastError();
    copy.Handle = file;
    copy.Created = Created;
    return ERROR_SUCCESS;
}

uint32_t AppendFile::Append(WideView text) const noexcept {
    if (text.size() > MAXDWORD / sizeof(WCHAR))
        return ERROR_INVALID_PARAMETER;
    const auto size = static_cast<DWORD>(text.size() * sizeof(WCHAR));
    DWORD written = 0;
    return WriteFile(Handle, text.data(), size, &written, nullptr) ? ERROR_SUCCESS : GetLastError();
}

uint32_t AppendFile::ReadSize(uint64_t& bytes) const noexcept {
    DWORD high = 0;
    SetLastError(ERROR_SUCCESS);
    const DWORD low = GetFileSize(Handle, &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS)
        return GetLastError();
    bytes = uint64_t{high} << 32 | low;
    return ERROR_SUCCESS;
}

uint32_t AppendFile::ReadIdentity(FileIdentity& identity) const noexcept {
    BY_HANDLE_FILE_INFORMATION information;
    if (!GetFileInformationByHandle(Handle, &information))
        return GetLastError();
    identity = {information.dwVolumeSerialNumber, information.nFileIndexHigh,
                information.nFileIndexLow};
    return ERROR_SUCCESS;
}

} // namespace treevault
