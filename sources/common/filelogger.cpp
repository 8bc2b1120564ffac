// SPDX-License-Identifier: MIT
// Opening of the log file and writing to it.
#include "common/filelogger.h"

#include "common/debugreport.h"
#include "common/impersonation.h"
#include "common/loggerconfig.h"
#include "common/loggerdefaults.h"
#include "platform/lasterror.h"

#include <chrono>
#include <thread>

namespace treevault {
namespace {

constexpr uint32_t Megabyte = 1048576;

uint32_t ReadNumberSetting(const WCHAR* key, uint32_t defaultValue) {
    uint32_t number = defaultValue;
    GetLoggerConfig().ReadNumber(key, number);
    return number;
}

void Report(const WCHAR* what, uint32_t code) noexcept {
    DebugReport([&](WideStream& text) {
        text << TV_W("FileLogger: ") << what << TV_W(" ") << ErrorInReport(code);
    });
}

// Somebody who reads the file may exclude others for a moment.
uint32_t OpenPatiently(AppendFile& file, const WideText& path) {
    constexpr int attempts = 4;
    for (int attempt = 1;; ++attempt) {
        const uint32_t code = file.Open(path);
        if (code != SharingViolation || attempt == attempts)
            return code;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

} // namespace

FileLogger::FileLogger(WideText logName, WideText banner)
    : LogName(std::move(logName)), Banner(std::move(banner)) {}

void FileLogger::Write(const WCHAR* text, ptrdiff_t length) noexcept {
    const LastErrorKeeper keeper;
    try {
        const AppendFile file = AcquireHandle();
        if (!file)
            return;
        const size_t size = length < 0 ? WideLength(text) : static_cast<size_t>(length);
        if (const uint32_t code = file.Append({text, size}); code != 0)
            Report(TV_W("cannot write"), code);
    } catch (...) {
        // Memory ran out: the line is lost.
    }
}

AppendFile FileLogger::AcquireHandle() {
    const std::lock_guard guard(Lock);
    if (Ended)
        return {};
    const uint32_t interval = ReadInterval();
    if (interval == 0) {
        Cached.Close();
        return OpenLogFile();
    }
    const uint32_t now = TickCount();
    if (LastOpenTick == 0 || now - LastOpenTick >= interval) {
        LastOpenTick = now;
        Cached.Close();
        Cached = OpenLogFile();
    }
    AppendFile own;
    if (Cached)
        if (const uint32_t code = Cached.Duplicate(own); code != 0)
            Report(TV_W("cannot duplicate handle"), code);
    return own;
}

// Looking a setting up takes as long as all the rest of a line, so that is done once in a period.
uint32_t FileLogger::ReadInterval() {
    const uint32_t period = GetLoggerConfig().Period();
    if (IntervalPeriod != period) {
        Interval = ReadNumberSetting(TV_W("KeepOpenInterval"), LoggerDefaults::KeepOpenInterval);
        IntervalPeriod = period;
    }
    return Interval;
}

AppendFile FileLogger::OpenLogFile() {
    const ImpersonationRevertGuard guard(LoggerDefaults::RevertThreadImpersonation);
    const bool nameHoldsPath = LogName.find_first_of(TV_W("\\/")) != LogName.npos;
    const WideText path = nameHoldsPath ? LogName : GetLoggerConfig().ReadLogDirectory() + LogName;
    const uint32_t threshold =
        ReadNumberSetting(TV_W("LogFileSizeThresholdMB"), LoggerDefaults::LogFileSizeThresholdMB);
    AppendFile file;
    uint32_t code = OpenPatiently(file, path);
    if (code == 0) {
        if (threshold != 0 && IsTooBig(file, path, threshold))
            return {};
        code = WriteBanner(file);
    }
    if (code != 0) {
        const WideText what = TV_W("cannot open log file '") + path + TV_W("'");
        Report(what.c_str(), code);
    }
    return file;
}

bool FileLogger::IsTooBig(const AppendFile& file, const WideText& path, uint32_t threshold) {
    uint64_t size = 0; // for a file that cannot tell
    file.ReadSize(size);
    const bool tooBig = size / Megabyte >= threshold;
    if (tooBig && !TooBigReported)
        DebugReport([&](WideStream& text) {
            text << TV_W("FileLogger: log file '") << path << TV_W("' is too big (size=")
                 << size / Megabyte << TV_W("MB threshold=") << threshold << TV_W("MB)");
        });
    TooBigReported = tooBig;
    return tooBig;
}

// A file that was made just now may bear the identity of one that was deleted.
uint32_t FileLogger::WriteBanner(const AppendFile& file) {
    if (Banner.empty())
        return 0;
    FileIdentity identity;
    if (const uint32_t code = file.ReadIdentity(identity); code != 0) {
        Report(TV_W("cannot get file id"), code);
        identity = {UINT32_MAX, UINT32_MAX, UINT32_MAX};
    }
    if (identity == BannerFile && !file.WasCreated())
        return 0;
    BannerFile = identity;
    return file.Append(Banner);
}

// A lock that is taken now belongs to a thread that the end of the process has caught inside.
void FileLogger::End() noexcept {
    const std::unique_lock guard(Lock, std::try_to_lock);
    if (!guard)
        return;
    Ended = true;
    Cached.Close();
    WideText().swap(LogName);
    WideText().swap(Banner);
}

} // namespace treevault
