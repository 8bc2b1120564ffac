// SPDX-License-Identifier: MIT
// Log files, and what is reported of them to the debugger stream.
#ifndef TREEVAULT_TESTS_SUPPORT_LOGFILES_H
#define TREEVAULT_TESTS_SUPPORT_LOGFILES_H

#include "common/debugreport.h"
#include "platform/encoding.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string>
#include <vector>

namespace treevault::tests {

inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The text of a file of UTF-16 units.
inline std::string ReadLog(const std::filesystem::path& path) {
    const std::string bytes = ReadBytes(path);
    WideText text(bytes.size() / sizeof(WCHAR), 0);
    bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * sizeof(WCHAR));
    return ToUtf8(text);
}

// Collects the reports while it lives, in place of the debugger stream. One at a time.
class ReportCapture {
public:
    ReportCapture() : Before(detail::DebugOutlet.exchange(&Collect)) { Reports().clear(); }
    ~ReportCapture() { detail::DebugOutlet = Before; }
    ReportCapture(const ReportCapture&) = delete;
    ReportCapture& operator=(const ReportCapture&) = delete;

    // What was reported since the last call.
    std::vector<std::string> Take() {
        const std::lock_guard guard(Lock());
        return std::exchange(Reports(), {});
    }

private:
    static void Collect(const WideText& text) {
        const std::lock_guard guard(Lock());
        Reports().push_back(ToUtf8(text));
    }

    static std::mutex& Lock() {
        static std::mutex lock;
        return lock;
    }
    static std::vector<std::string>& Reports() {
        static std::vector<std::string> reports;
        return reports;
    }

    void (*Before)(const WideText&);
};

} // namespace treevault::tests

#endif
