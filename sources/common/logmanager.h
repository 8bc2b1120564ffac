// SPDX-License-Identifier: MIT
// The log file of this library: made while the library loads, closed while it unloads.
#ifndef TREEVAULT_COMMON_LOGMANAGER_H
#define TREEVAULT_COMMON_LOGMANAGER_H

#include "common/filelogger.h"

namespace treevault {

// The name of the library's file without its extension, and ".log".
WideText LogFileName();

// What stands at the head of the file: library, version, process and command line.
WideText LogBanner();

// Registers a logger with the sinks of the log, or reports that they are too many.
void RegisterLogger(LogSink& logger) noexcept;

// The logger of the process, registered since the first call, which the loading of the library
// makes. A static object that logs while it is destroyed makes that call before, in its
// constructor: the log ends after it then. Null if memory was short.
FileLogger* GetFileLogger() noexcept;

} // namespace treevault

#endif
