// SPDX-License-Identifier: MIT
// The registry of Windows.
#include "platform/registry.h"

namespace treevault {
namespace {

class Key {
public:
    Key(RegistryRoot root, const WideText& path) noexcept {
        const HKEY top = root == RegistryRoot::CurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
        if (RegOpenKeyExW(top, path.c_str(), 0, KEY_READ, &Handle) != ERROR_SUCCESS)
            Handle = nullptr;
    }
    ~Key() {
        if (Handle)
            RegCloseKey(Handle);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    explicit operator bool() const noexcept { return Handle != nullptr; }

    // False behind the last value.
    bool ReadName(DWORD index, WideText& name) const {
        name.assign(260, 0);
        for (;;) {
            auto length = static_cast<DWORD>(name.size());
            const LSTATUS code = RegEnumValueW(Handle, index, name.data(), &length, nullptr,
                                               nullptr, nullptr, nullptr);
            if (code == ERROR_MORE_DATA) {
                name.resize(2 * name.size());
                continue;
            }
            name.resize(code == ERROR_SUCCESS ? length : 0);
            return code == ERROR_SUCCESS;
        }
    }

    // False for a value that is no text.
    bool ReadText(const WideText& name, WideText& text) const {
        text.assign(260, 0);
        for (;;) {
            DWORD type = REG_NONE;
            auto bytes = static_cast<DWORD>(text.size() * sizeof(WCHAR));
            const LSTATUS code = RegQueryValueExW(Handle, name.c_str(), nullptr, &type,
                                                  reinterpret_cast<BYTE*>(text.data()), &bytes);
            if (code == ERROR_MORE_DATA) {
                text.resize(2 * text.size());
                continue;
            }
            if (code != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
                return false;
            text.resize(bytes / sizeof(WCHAR));
            // The terminator is part of the data, if who wrote them thought of it.
            text.resize(WideLength(text.c_str()));
            return true;
        }
    }

private:
    HKEY Handle = nullptr;
};

} // namespace

std::map<WideText, WideText> ReadRegistryTexts(RegistryRoot root, const WideText& path) {
    std::map<WideText, WideText> texts;
    const Key key(root, path);
    WideText name;
    for (DWORD index = 0; key && key.ReadName(index, name); ++index)
        if (WideText text; key.ReadText(name, text))
            texts.insert_or_assign(name, std::move(text));
    return texts;
}

} // namespace treevault
