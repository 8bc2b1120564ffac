// SPDX-License-Identifier: MIT
// The folder of the log file.
#ifndef TREEVAULT_COMMON_LOGDIRECTORY_H
#define TREEVAULT_COMMON_LOGDIRECTORY_H

#include "common/datadirectory.h"

#include <atomic>
#include <mutex>
#include <optional>

namespace treevault {

// The folder for a value of the setting `Path`, with "\" alone and one at the end.
WideText MakeLogDirectory(const DataDirectoryResolver& resolver, const WideText& setting);

// Makes each folder of the path that is missing.
void MakeFolders(const WideText& path);

class LoggerConfig;

// Computes the folder anew when it was told to. Any thread may use any operation.
class LogDirectory {
public:
    // The setting is to be read again.
    void Invalidate() noexcept { Invalid = true; }

    // The folder, made if it is another one than before.
    WideText Get(LoggerConfig& settings);

    // Gives back the memory that it holds.
    void Clear() noexcept;

private:
    void Update(LoggerConfig& settings);

    std::atomic<bool> Invalid{true};
    std::mutex Lock; // guards what follows
    WideText Path;
    std::optional<DataDirectoryResolver> Resolver; // made at first use
};

} // namespace treevault

#endif
