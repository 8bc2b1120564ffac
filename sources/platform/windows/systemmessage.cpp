// SPDX-License-Identifier: MIT
// Message texts of the system.
#include "platform/systemmessage.h"

#include "platform/windows/formatmessage.h"

namespace treevault {

bool ReadSystemMessage(uint32_t id, WideText& text) {
    return ReadMessage(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, id, text);
}

} // namespace treevault
