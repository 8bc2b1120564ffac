// SPDX-License-Identifier: MIT
// Folders of Linux, and paths joined with the results of Windows.
#include "platform/folders.h"

#include "platform/posix/filepath.h"

#include <cerrno>
#include <sys/stat.h>
#include <vector>

namespace treevault {

void MakeFolder(const WideText& path) {
    const std::string native = NativePath(path);
    struct stat status;
    if (stat(native.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR))
        mkdir(native.c_str(), 0777);
}

namespace {

// How much of the path ".." cannot take away: "\", "\\", "X:\" or "X:".
size_t RootLength(const WideText& path) noexcept {
    if (path.size() >= 2 && path[1] == TV_W(':'))
        return path.size() >= 3 && path[2] == PathSeparator ? 3 : 2;
    return std::min(path.find_first_not_of(PathSeparator), std::min<size_t>(path.size(), 2));
}

// Without "." and "..".
WideText Canonical(const WideText& path) {
    const size_t root = RootLength(path);
    std::vector<WideText> names;
    for (size_t at = root; at < path.size();) {
        const size_t end = std::min(path.find(PathSeparator, at), path.size());
        const WideText name = path.substr(at, end - at);
        if (name == TV_W("..") && !names.empty())
            names.pop_back();
        else if (name != TV_W("..") && name != TV_W("."))
            names.push_back(name);
        at = end + 1;
    }
    WideText result = path.substr(0, root);
    for (const WideText& name : names) {
        if (result.size() > root)
            result += PathSeparator;
        result += name;
    }
    return result.empty() ? WideText(1, PathSeparator) : result;
}

} // namespace

WideText JoinPath(const WideText& folder, const WideText& name) {
    if (folder.empty() || (name.size() >= 2 && name[1] == TV_W(':')))
        return Canonical(name);
    const bool ends = folder.back() == PathSeparator;
    return Canonical(ends ? folder + name : folder + PathSeparator + name);
}

} // namespace treevault
