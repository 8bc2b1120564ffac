// SPDX-License-Identifier: MIT
// Values of ini files as the system reads them.
#include "platform/inifile.h"

namespace treevault {

bool ReadIniValue(const WideText& path, const WideText& section, const WideText& key,
                  WideText& value) {
    // Without a name the system would take a file of its own.
    if (path.empty())
        return false;
    WideText buffer(260, 0);
    for (;;) {
        const auto size = static_cast<DWORD>(buffer.size());
        const DWORD length = GetPrivateProfileStringW(section.c_str(), key.c_str(), L"",
                                                      buffer.data(), size, path.c_str());
        if (length == 0)
            return false;
        if (length != size - 1) {
            value.assign(buffer, 0, length);
            return true;
        }
        buffer.resize(2 * buffer.size());
    }
}

} // namespace treevault
