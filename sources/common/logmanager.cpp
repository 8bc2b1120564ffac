// SPDX-License-Identifier: MIT
// Beginning and end of the log file.
#include "common/logmanager.h"

#include "common/debugreport.h"
#include "common/loggerconfig.h"
#include "common/settings.h"
#include "platform/process.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace treevault {

WideText LogFileName() {
    ModulePlace place;
    if (!LibraryPlace(place))
        place = ExecutablePlace();
    return place.BaseName + TV_W(".log");
}

WideText LogBanner() {
    const WideText stars = WideText(100, TV_W('*')) + TV_W("\r\n");
    WideStream text;
    text << stars;
    text << TV_W("*** Module: ") << LibraryPath() << TV_W(" (Base: ");
    text.Address(LibraryBase()) << TV_W(")\r\n");
    text << TV_W("*** Version: ") << TV_W(TREEVAULT_VERSION) << TV_W("\r\n");
    text << TV_W("*** Module description: TreeVault64\r\n");
    text << TV_W("*** Process: ") << ExecutablePath() << TV_W(" (Pid: ") << CurrentProcessId()
         << TV_W(")\r\n");
    text << TV_W("*** Command line: ") << ProcessCommandLine() << TV_W("\r\n");
    text << stars;
    return text.Str();
}

void RegisterLogger(LogSink& logger) noexcept {
    if (!GetLoggerConfig().AddSink(&logger))
        DebugReport([](WideStream& text) { text << TV_W("LogManager: Too many loggers"); });
}

namespace {

// The logger lies in memory of the library's own and is never destroyed: a thread may be inside
// while the process ends.
class ProcessLogger {
public:
    ProcessLogger() noexcept {
        try {
            GetSettingsSources(); // which outlive this from here on
            Logger = new (Storage) FileLogger(LogFileName(), LogBanner());
            RegisterLogger(*Logger);
        } catch (...) {
            // A library that has no memory at its start has no log file either.
        }
    }
    ~ProcessLogger() {
        if (Logger) {
            GetLoggerConfig().RemoveSink(Logger);
            Logger->End();
        }
        GetLoggerConfig().End();
    }
    ProcessLogger(const ProcessLogger&) = delete;
    ProcessLogger& operator=(const ProcessLogger&) = delete;

    FileLogger* Get() const noexcept { return Logger; }

private:
    alignas(FileLogger) inline static std::byte Storage[sizeof(FileLogger)];
    FileLogger* Logger = nullptr;
};

} // namespace

FileLogger* GetFileLogger() noexcept {
    static const ProcessLogger logger;
    return logger.Get();
}

namespace {
[[maybe_unused]] const FileLogger* const madeAtLoad = GetFileLogger();
} // namespace

} // namespace treevault
