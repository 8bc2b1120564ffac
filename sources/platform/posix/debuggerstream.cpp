// SPDX-License-Identifier: MIT
// Standard error, as UTF-8.
#include "platform/debuggerstream.h"

#include "platform/encoding.h"
#include "platform/posix/withheldsignal.h"

#include <unistd.h>

namespace treevault {

void WriteToDebugger(const WideText& text) {
    const std::string narrow = ToUtf8(text);
    // The stream may be a pipe without a reader, or a file that may not grow.
    const WithheldSignal pipe(SIGPIPE);
    const WithheldSignal size(SIGXFSZ);
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, narrow.data(), narrow.size());
}

} // namespace treevault
