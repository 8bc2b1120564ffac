// SPDX-License-Identifier: MIT
// Command line and standard streams, whose own text is UTF-16 and whose default is lines of text.
#include "console.h"

#include "widetext.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace treevault::program {

std::vector<std::string> CommandLineArguments(int, char**) {
    int count = 0;
    LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(ToUtf8(wide[i]));
    LocalFree(wide);
    return arguments;
}

StreamSetup::StreamSetup() {
    for (std::FILE* stream : {stdin, stdout, stderr})
        _setmode(_fileno(stream), _O_BINARY);
    FormerCodePage = GetConsoleOutputCP();
    if (FormerCodePage != 0)
        SetConsoleOutputCP(CP_UTF8);
}

StreamSetup::~StreamSetup() {
    if (FormerCodePage != 0)
        SetConsoleOutputCP(FormerCodePage);
}

bool IsTerminal(std::FILE* stream) {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    DWORD mode = 0;
    if (handle == INVALID_HANDLE_VALUE || !GetConsoleMode(handle, &mode))
        return false;
    return SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

} // namespace treevault::program
