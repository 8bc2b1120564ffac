// SPDX-License-Identifier: MIT
// C++17: a node, a clone that is changed, what was modified, and values in other types.
#include "treevaultcpp.h"

#include <iostream>

using namespace example;

namespace {

// The names of the attributes that are marked as modified, with a blank between them.
std::string ModifiedNames(const Node& node) {
    size_t size = 0;
    Check(AcnGetModifiedAttributeNames(node.get(), nullptr, &size));
    WideText names(size, WCHAR());
    if (size != 0)
        Check(AcnGetModifiedAttributeNames(node.get(), names.data(), &size));
    std::string text;
    for (size_t start = 0; start < names.size();) {
        const WideText name = names.c_str() + start;
        text += (text.empty() ? "" : " ") + ToUtf8(name);
        start += name.size() + 1;
    }
    return text;
}

std::string Convert(ValueType type, const void* data, size_t size) {
    char text[64];
    uint64_t textSize = sizeof(text);
    Check(AcnConvertData(type, data, size, VtStringA, text, &textSize));
    return text;
}

void ShowClone() {
    const Node original = Create(TREEVAULT_WIDE("invoice"), TREEVAULT_WIDE("document"));
    Set(original, TREEVAULT_WIDE("number"), 417);
    Set(original, TREEVAULT_WIDE("state"), "open");
    Check(AcnSetModifiedState(original.get(), nullptr, 0)); // as if it had just been loaded

    const Node draft = Clone(original);
    Set(draft, TREEVAULT_WIDE("state"), "paid");
    std::cout << "original: " << Get(original, TREEVAULT_WIDE("state")) << ", modified: ["
              << ModifiedNames(original) << "]\n"
              << "draft: " << Get(draft, TREEVAULT_WIDE("state")) << ", modified: ["
              << ModifiedNames(draft) << "]\n"
              << "number: " << Get(draft, TREEVAULT_WIDE("number")) << "\n";
}

void ShowConversion() {
    const uint8_t flag = 1;
    const uint8_t bytes[] = {0xCA, 0xFE};
    const int64_t big = -9007199254740993;
    std::cout << Convert(VtBool, &flag, sizeof(flag)) << "\n"
              << Convert(VtBinary, bytes, sizeof(bytes)) << "\n"
              << Convert(VtInt64, &big, sizeof(big)) << "\n";
}

void ShowFailure() {
    const Node parent = Create(TREEVAULT_WIDE("parent"));
    Check(AcnAddChild(parent.get(), Create(TREEVAULT_WIDE("child")).get()));
    try {
        Check(AcnAddChild(parent.get(), Create(TREEVAULT_WIDE("child")).get()));
    } catch (const Error& error) {
        std::cout << (error.Code == TREEVAULT_E_CHILD_EXISTS ? "refused: " : "odd: ")
                  << error.what() << "\n";
    }
}

} // namespace

int main() {
    try {
        ShowClone();
        ShowConversion();
        ShowFailure();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
