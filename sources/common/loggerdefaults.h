// SPDX-License-Identifier: MIT
// What holds for the log file where no setting says otherwise.
#ifndef TREEVAULT_COMMON_LOGGERDEFAULTS_H
#define TREEVAULT_COMMON_LOGGERDEFAULTS_H

#include "platform/widetext.h"

#include <cstdint>

namespace treevault {

struct LoggerDefaults {
    static constexpr const WCHAR* LogPath = TV_W("Logs\\");
    static constexpr uint32_t KeepOpenInterval = 5000; // milliseconds
    static constexpr uint32_t LogFileSizeThresholdMB = 1024;
    static constexpr bool RevertThreadImpersonation = false; // while the file is opened
};

} // namespace treevault

#endif
