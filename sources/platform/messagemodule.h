// SPDX-License-Identifier: MIT
// Files with message texts: resource modules, which are the same files on every platform.
#ifndef TREEVAULT_PLATFORM_MESSAGEMODULE_H
#define TREEVAULT_PLATFORM_MESSAGEMODULE_H

#include "platform/widetext.h"

#include <cstdint>
#include <utility>

namespace treevault {

// A module, loaded as data: nothing in it runs. Reading texts is safe from any thread.
class MessageModule {
public:
    constexpr MessageModule() noexcept = default;
    MessageModule(MessageModule&& other) noexcept
        : Content(std::exchange(other.Content, nullptr)) {}
    MessageModule& operator=(MessageModule&& other) noexcept {
        std::swap(Content, other.Content);
        return *this;
    }
    ~MessageModule() { Release(); }

    // Loads a file, into a module that holds none. A name without a folder is looked for where the
    // platform looks; one without an extension gets ".dll". False, with the platform's code of the
    // failure in `error`, for what is no module. On Linux that is always the code of a missing
    // file, also for one that is damaged.
    bool Load(const WideText& path, uint32_t& error);

    void Release() noexcept;
    bool IsLoaded() const noexcept { return Content != nullptr; }

    // The text of message `id`, line ends included, in the user's language or else a neutral one;
    // inserts stand as they are. Linux takes the neutral language, then English, then any. False,
    // with `text` untouched, when there is none.
    bool ReadText(uint32_t id, WideText& text) const;

private:
    void* Content = nullptr; // what the platform needs to have of the file
};

} // namespace treevault

#endif
