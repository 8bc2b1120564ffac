// SPDX-License-Identifier: MIT
// The log file: one text file to which all threads append, and other processes too.
#ifndef TREEVAULT_COMMON_FILELOGGER_H
#define TREEVAULT_COMMON_FILELOGGER_H

#include "common/logging.h"
#include "platform/appendfile.h"

#include <mutex>
#include <optional>

namespace treevault {

// Keeps the file open for the setting `KeepOpenInterval` and opens it anew with the first line that
// comes later, so that a file that was deleted or moved away is noticed; then, and in every file
// that is not the one before, the banner goes first. What cannot be written is lost, and the
// debugger stream is told. Any thread may use any operation.
class FileLogger final : public LogSink {
public:
    // A name with a separator is the path of the file; another one is a name in the log directory.
    FileLogger(WideText logName, WideText banner);
    FileLogger(const FileLogger&) = delete;
    FileLogger& operator=(const FileLogger&) = delete;

    // One write of the whole line, without a lock.
    void Write(const WCHAR* text, ptrdiff_t length) noexcept override;

    // A handle of the caller's own, or none.
    AppendFile AcquireHandle();

    // For the unloading of the library: closes the file and gives back the memory that this holds.
    // Lines that come later are lost.
    void End() noexcept;

private:
    uint32_t ReadInterval();
    AppendFile OpenLogFile();
    bool IsTooBig(const AppendFile& file, const WideText& path, uint32_t threshold);
    uint32_t WriteBanner(const AppendFile& file);

    std::mutex Lock; // guards what follows
    WideText LogName;
    WideText Banner;
    std::optional<uint32_t> IntervalPeriod; // of the settings, in which Interval was read
    uint32_t Interval = 0;
    AppendFile Cached;
    uint32_t LastOpenTick = 0; // of the last opening of Cached; 0 for never
    FileIdentity BannerFile;   // the file that got the banner last
    bool TooBigReported = false;
    bool Ended = false;
};

} // namespace treevault

#endif
