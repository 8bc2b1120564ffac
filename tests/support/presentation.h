// SPDX-License-Identifier: MIT
// Nodes as the text that the log shows.
#ifndef TREEVAULT_TESTS_SUPPORT_PRESENTATION_H
#define TREEVAULT_TESTS_SUPPORT_PRESENTATION_H

#include "support/trees.h"

#include <cstdio>

namespace treevault::tests {

// As AcnGetStringPresentation gives it. `address` receives what stands between "ACNode[" and "]:".
inline std::string Present(IACNode* node, uint32_t mode, std::string* address = nullptr) {
    size_t size = 0;
    EXPECT_EQ(CodeText(TREEVAULT_E_INSUFFICIENT_BUFFER),
              CodeText(AcnGetStringPresentation(node, mode, nullptr, &size)));
    Text buffer(size, W('?'));
    EXPECT_TRUE(Succeeds(AcnGetStringPresentation, node, mode, buffer.data(), &size));
    EXPECT_EQ(buffer.size(), size);
    buffer.pop_back();
    std::string text = Narrow(buffer);
    const std::string head = "ACNode[";
    if (address && text.starts_with(head))
        *address = text.substr(head.size(), text.find("]:") - head.size());
    return text;
}

// What stands behind "ACNode[address]:" and the line end, with blanks for tabs.
inline std::string Shown(IACNode* node, uint32_t mode = 1) {
    const std::string text = Present(node, mode);
    const std::string mark = "]:\r\n";
    std::string shown = text.substr(std::min(text.find(mark) + mark.size(), text.size()));
    std::replace(shown.begin(), shown.end(), '\t', ' ');
    return shown;
}

// "0x" and 16 upper-case digits.
inline std::string AddressText(const void* address) {
    char text[19] = "0x";
    std::snprintf(text + 2, 17, "%016llX",
                  static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(address)));
    return text;
}

} // namespace treevault::tests

#endif
