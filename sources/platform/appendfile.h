// SPDX-License-Identifier: MIT
// A file to which many threads and processes append at the same time, each piece of text whole.
#ifndef TREEVAULT_PLATFORM_APPENDFILE_H
#define TREEVAULT_PLATFORM_APPENDFILE_H

#include "platform/widetext.h"

#include <cstdint>
#include <utility>

namespace treevault {

// Tells files apart that exist at the same time.
struct FileIdentity {
    uint32_t Volume = 0;
    uint32_t IndexHigh = 0;
    uint32_t IndexLow = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

inline constexpr uint32_t SharingViolation = 32; // somebody else excludes us for the moment

// A handle of an open file, or none. Results are 0 or a code of Windows, on every platform. All
// operations but Open need an open file.
class AppendFile {
public:
    AppendFile() noexcept = default;
    AppendFile(AppendFile&& other) noexcept
        : Handle(std::exchange(other.Handle, nullptr)), Created(other.Created) {}
    AppendFile& operator=(AppendFile&& other) noexcept {
        std::swap(Handle, other.Handle);
        std::swap(Created, other.Created);
        return *this;
    }
    ~AppendFile() { Close(); }

    explicit operator bool() const noexcept { return Handle != nullptr; }

    // Opens the file, or makes it if it is not there. Others may read, write, move and delete it
    // meanwhile. Only for an object without a file; std::bad_alloc.
    uint32_t Open(const WideText& path);
    void Close() noexcept;

    // Whether Open made the file.
    bool WasCreated() const noexcept { return Created; }

    // Gives `copy`, which has no file, a handle of its own: each of the two may be closed first.
    uint32_t Duplicate(AppendFile& copy) const noexcept;

    // Any number of threads may append at once.
    uint32_t Append(WideView text) const noexcept;

    uint32_t ReadSize(uint64_t& bytes) const noexcept;
    uint32_t ReadIdentity(FileIdentity& identity) const noexcept;

private:
    void* Handle = nullptr; // what it points to is the platform's
    bool Created = false;
};

} // namespace treevault

#endif
