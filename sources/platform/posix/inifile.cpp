// SPDX-License-Identifier: MIT
// A reader of ini files with the results of the one that Windows has.
#include "platform/inifile.h"

#include "platform/posix/filepath.h"
#include "platform/posix/readfile.h"

#include <cstring>

namespace treevault {
namespace {

// No settings are as long as this; what is longer is not read at all.
constexpr size_t LargestFile = 16u << 20;

// The content as UTF-8, without a byte order mark.
bool ReadTextFile(const WideText& path, std::string& text) {
    if (!ReadOrdinaryFile(NativePath(path).c_str(), LargestFile, text))
        return false;
    if (text.starts_with("\xFF\xFE")) {
        WideText wide(text.size() / 2 - 1, 0);
        std::memcpy(wide.data(), text.data() + 2, wide.size() * sizeof(WCHAR));
        text = ToUtf8(wide);
    } else if (text.starts_with("\xEF\xBB\xBF")) {
        text.erase(0, 3);
    }
    return true;
}

std::string_view Trim(std::string_view text) noexcept {
    // The last one ended text files once.
    constexpr std::string_view space = " \t\v\f\r\x1A";
    const size_t first = text.find_first_not_of(space);
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

// Names of settings are ASCII.
bool SameName(std::string_view left, std::string_view right) noexcept {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return lower(a) == lower(b); });
}

std::string_view Unquote(std::string_view value) noexcept {
    const bool quoted = value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
                        value.front() == value.back();
    return quoted ? value.substr(1, value.size() - 2) : value;
}

// Takes the next line off the text.
std::string_view TakeLine(std::string_view& text) noexcept {
    const size_t end = text.find_first_of("\r\n");
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return Trim(line);
}

// What stands between "[" and the last "]"; false for other lines.
bool ParseHeader(std::string_view line, std::string_view& name) noexcept {
    const size_t close = line.rfind(']');
    if (!line.starts_with('[') || close == line.npos)
        return false;
    name = Trim(line.substr(1, close - 1));
    return true;
}

// The value in the first section of the name, and there in the first line of the key.
std::string_view FindValue(std::string_view text, std::string_view section, std::string_view key) {
    bool inside = false;
    while (!text.empty()) {
        const std::string_view line = TakeLine(text);
        if (std::string_view name; ParseHeader(line, name)) {
            if (inside)
                return {};
            inside = SameName(name, section);
        } else if (inside) { // a comment has a ";" in its name, and no key does
            const size_t equals = line.find('=');
            if (SameName(Trim(line.substr(0, equals)), key))
                return equals == line.npos ? "" : Unquote(Trim(line.substr(equals + 1)));
        }
    }
    return {};
}

} // namespace

bool ReadIniValue(const WideText& path, const WideText& section, const WideText& key,
                  WideText& value) {
    std::string text;
    if (!ReadTextFile(path, text))
        return false;
    const std::string sectionName = ToUtf8(section);
    const std::string keyName = ToUtf8(key);
    const std::string_view found = FindValue(text, Trim(sectionName), Trim(keyName));
    const std::string_view ended = found.substr(0, found.find('\0'));
    if (ended.empty())
        return false;
    value = ToWide(ended);
    return true;
}

} // namespace treevault
