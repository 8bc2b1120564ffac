// SPDX-License-Identifier: MIT
// Bytes that grow at their end: what the printer writes to.
#ifndef TREEVAULT_XML_OUTPUTBUFFER_H
#define TREEVAULT_XML_OUTPUTBUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

namespace treevault {

// Keeps its memory when it is emptied. std::bad_alloc leaves it as it was.
class OutputBuffer {
public:
    explicit OutputBuffer(size_t capacity)
        : Bytes(std::make_unique_for_overwrite<char[]>(capacity)), Capacity(capacity) {}

    const char* Data() const noexcept { return Bytes.get(); }
    size_t Size() const noexcept { return Used; }
    void Clear() noexcept { Used = 0; }

    // What would grow beyond `most` bytes raises std::bad_alloc from now on.
    void Limit(size_t most) noexcept { Most = most; }

    // Room for `size` bytes at the end. What is written there counts after Commit.
    char* Room(size_t size) {
        if (size > Capacity - Used)
            Grow(size);
        return Bytes.get() + Used;
    }

    // `end` lies behind the last byte written into the room.
    void Commit(const char* end) noexcept { Used = static_cast<size_t>(end - Bytes.get()); }

    void Append(std::string_view text) {
        std::memcpy(Room(text.size()), text.data(), text.size());
        Used += text.size();
    }

    void Append(size_t count, char byte) {
        std::memset(Room(count), byte, count);
        Used += count;
    }

private:
    void Grow(size_t size) {
        if (Used > Most || size > Most - Used)
            throw std::bad_alloc();
        size_t capacity = Capacity * 2;
        if (capacity - Used < size)
            capacity = Used + size;
        auto bytes = std::make_unique_for_overwrite<char[]>(capacity);
        std::memcpy(bytes.get(), Bytes.get(), Used);
        Bytes = std::move(bytes);
        Capacity = capacity;
    }

    std::unique_ptr<char[]> Bytes;
    size_t Capacity;
    size_t Used = 0;
    size_t Most = SIZE_MAX;
};

} // namespace treevault

#endif
