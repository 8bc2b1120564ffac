// SPDX-License-Identifier: MIT
// Computing and making of the log's folder.
#include "common/logdirectory.h"

#include "common/loggerconfig.h"
#include "common/loggerdefaults.h"
#include "platform/folders.h"

#include <algorithm>

namespace treevault {

WideText MakeLogDirectory(const DataDirectoryResolver& resolver, const WideText& setting) {
    WideText path = resolver.Resolve(setting);
    std::replace(path.begin(), path.end(), TV_W('/'), PathSeparator);
    if (!path.empty() && path.back() != PathSeparator)
        path += PathSeparator;
    return path;
}

void MakeFolders(const WideText& path) {
    for (size_t end = 1; (end = path.find(PathSeparator, end)) != path.npos; ++end)
        MakeFolder(path.substr(0, end));
    MakeFolder(path);
}

WideText LogDirectory::Get(LoggerConfig& settings) {
    const std::lock_guard guard(Lock);
    if (Invalid.exchange(false)) {
        try {
            Update(settings);
        } catch (...) {
            Invalidate();
            throw;
        }
    }
    return Path;
}

void LogDirectory::Update(LoggerConfig& settings) {
    WideText setting = LoggerDefaults::LogPath;
    settings.ReadString(TV_W("Path"), setting);
    if (!Resolver)
        Resolver.emplace(ReadDataDirectory());
    WideText path = MakeLogDirectory(*Resolver, setting);
    if (path == Path)
        return;
    MakeFolders(path);
    Path = std::move(path);
}

void LogDirectory::Clear() noexcept {
    const std::unique_lock guard(Lock, std::try_to_lock);
    if (!guard)
        return;
    WideText().swap(Path);
    Resolver.reset();
}

} // namespace treevault
