// SPDX-License-Identifier: MIT
// Files of a test, which are gone when it ends.
#ifndef TREEVAULT_TESTS_SUPPORT_TEMPORARYFOLDER_H
#define TREEVAULT_TESTS_SUPPORT_TEMPORARYFOLDER_H

#include "platform/encoding.h"
#include "platform/process.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

namespace treevault::tests {

// A path as the library's text has it, and the other way round.
inline WideText TextOfPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return ToWide({reinterpret_cast<const char*>(text.data()), text.size()});
}

inline std::filesystem::path PathOfText(WideView text) {
    std::string narrow = ToUtf8(text);
    for (char& c : narrow)
        if (c == '\\')
            c = '/';
    return std::u8string(narrow.begin(), narrow.end());
}

inline void WriteFile(const std::filesystem::path& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    ASSERT_TRUE(file.flush()) << path;
}

// A file that is deleted at the end.
class TemporaryFile {
public:
    TemporaryFile(std::filesystem::path path, std::string_view content) : Path(std::move(path)) {
        WriteFile(Path, content);
    }
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(Path, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path Path;
};

class TemporaryFolder {
public:
    TemporaryFolder() : Path(MakeName()) { std::filesystem::create_directories(Path); }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(Path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path Path;

private:
    static std::filesystem::path MakeName() {
        static std::atomic<unsigned> count{0};
        return std::filesystem::temp_directory_path() /
               ("treevault-" + std::to_string(CurrentProcessId()) + "-" +
                std::to_string(count.fetch_add(1)));
    }
};

} // namespace treevault::tests

#endif
