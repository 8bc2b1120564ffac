// SPDX-License-Identifier: MIT
// The resources of a file of the kind that Windows has for programs and libraries, PE32 and PE32+.
// The bytes may be anything: every offset and every count is held against what there is.
#ifndef TREEVAULT_PLATFORM_POSIX_PEIMAGE_H
#define TREEVAULT_PLATFORM_POSIX_PEIMAGE_H

#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

namespace treevault {

// Bytes that are read within their bounds alone. They are borrowed.
class ByteView {
public:
    ByteView() = default;
    explicit ByteView(std::string_view bytes) noexcept : Bytes(bytes) {}

    size_t Size() const noexcept { return Bytes.size(); }

    // False, with `value` untouched, for what does not lie inside as a whole.
    template <class Value>
    bool Read(uint64_t at, Value& value) const noexcept {
        static_assert(std::is_trivially_copyable_v<Value>);
        if (!Holds(at, sizeof value))
            return false;
        std::memcpy(&value, Bytes.data() + at, sizeof value);
        return true;
    }

    bool Slice(uint64_t at, uint64_t size, ByteView& slice) const noexcept {
        if (!Holds(at, size))
            return false;
        slice.Bytes = Bytes.substr(static_cast<size_t>(at), static_cast<size_t>(size));
        return true;
    }

    std::string_view Text() const noexcept { return Bytes; }

private:
    bool Holds(uint64_t at, uint64_t size) const noexcept {
        return at <= Bytes.size() && size <= Bytes.size() - at;
    }

    std::string_view Bytes;
};

// A resource in one language; the content is a part of the file.
struct LanguageResource {
    uint32_t Language;
    ByteView Content;
};

// Appends the resource of this type and name in each of its languages, in the order of the file.
// False when the file is no such image, is cut off, or its resources are damaged. An image without
// the resource is a sound one.
bool ReadResources(ByteView file, uint32_t type, uint32_t name,
                   std::vector<LanguageResource>& resources);

} // namespace treevault

#endif
