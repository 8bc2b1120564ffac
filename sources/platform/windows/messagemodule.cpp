// SPDX-License-Identifier: MIT
// Message modules, read by the system.
#include "platform/messagemodule.h"

#include "platform/windows/formatmessage.h"

namespace treevault {

bool MessageModule::Load(const WideText& path, uint32_t& error) {
    Content = LoadLibraryExW(path.c_str(), nullptr,
                             LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    if (!Content)
        error = GetLastError();
    return Content != nullptr;
}

void MessageModule::Release() noexcept {
    if (Content)
        FreeLibrary(static_cast<HMODULE>(std::exchange(Content, nullptr)));
}

bool MessageModule::ReadText(uint32_t id, WideText& text) const {
    return Content && ReadMessage(FORMAT_MESSAGE_FROM_HMODULE, Content, id, text);
}

} // namespace treevault
