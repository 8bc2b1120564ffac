// SPDX-License-Identifier: MIT
// Resolving of relative paths.
#include "common/datadirectory.h"

#include "common/settings.h"
#include "platform/environment.h"
#include "platform/folders.h"
#include "platform/process.h"

#include <algorithm>

namespace treevault {
namespace {

constexpr const WCHAR* Separators = TV_W("\\/");

WCHAR FoldCase(WCHAR unit) noexcept {
    return unit >= TV_W('A') && unit <= TV_W('Z') ? static_cast<WCHAR>(unit + 32) : unit;
}

bool NameLess(const WideText& left, const WideText& right) noexcept {
    return std::ranges::lexicographical_compare(left, right, {}, FoldCase, FoldCase);
}

} // namespace

PathNames SplitPath(WideView path) {
    PathNames names;
    while (!path.empty()) {
        const size_t end = std::min(path.find_first_of(Separators), path.size());
        if (end != 0)
            names.emplace_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return names;
}

bool IsAbsolutePath(WideView path) noexcept {
    if (path.empty())
        return false;
    return path[0] == TV_W('\\') || path[0] == TV_W('/') ||
           (path.size() >= 2 && path[1] == TV_W(':'));
}

bool PathNamesLess::operator()(const PathNames& left, const PathNames& right) const noexcept {
    return std::ranges::lexicographical_compare(left, right, NameLess);
}

DataDirectoryResolver::DataDirectoryResolver(WideText baseDirectory,
                                             const std::map<WideText, WideText>& overrides)
    : Base(std::move(baseDirectory)) {
    for (const auto& [source, target] : overrides)
        Overrides.insert_or_assign(SplitPath(ExpandEnvironment(source)), ExpandEnvironment(target));
}

bool DataDirectoryResolver::FindOverride(const WideText& path, WideText& result) const {
    PathNames names = SplitPath(path);
    PathNames removed; // the last one first
    for (; !names.empty(); names.pop_back()) {
        const auto found = Overrides.find(names);
        if (found != Overrides.end()) {
            result = found->second;
            for (auto name = removed.rbegin(); name != removed.rend(); ++name)
                result = JoinPath(result, *name);
            return true;
        }
        removed.push_back(names.back());
    }
    return false;
}

WideText DataDirectoryResolver::Resolve(const WideText& path) const {
    WideText resolved = ExpandEnvironment(path);
    if (IsAbsolutePath(resolved))
        return resolved;
    if (FindOverride(resolved, resolved) && IsAbsolutePath(resolved))
        return resolved;
    return Base + resolved;
}

RegistryPath ParseRegistryPath(const WideText& text) {
    const size_t end = text.find_first_of(Separators);
    const WideView first = WideView(text).substr(0, end);
    const WideText rest = end == text.npos ? WideText() : text.substr(end + 1);
    if (first == TV_W("HKLM") || first == TV_W("HKEY_LOCAL_MACHINE"))
        return {RegistryRoot::LocalMachine, rest};
    if (first == TV_W("HKCU") || first == TV_W("HKEY_CURRENT_USER"))
        return {RegistryRoot::CurrentUser, rest};
    return {RegistryRoot::LocalMachine, text};
}

WideText MakeBaseDirectory(const WideText& setting, const WideText& libraryDirectory) {
    const WideText base = ExpandEnvironment(setting);
    return IsAbsolutePath(base) ? base : libraryDirectory + base;
}

DataDirectoryResolver ReadDataDirectory() {
    ModulePlace library;
    if (!LibraryPlace(library))
        library = ExecutablePlace();
    const WideText base = GetStringSetting(nullptr, TV_W("DataDirectoryPath"), TV_W(""));
    const WideText key =
        GetStringSetting(nullptr, TV_W("DataDirectoryPathOverrideRegKey"), TV_W(""));
    std::map<WideText, WideText> overrides;
    if (!key.empty()) {
        const RegistryPath path = ParseRegistryPath(key);
        overrides = ReadRegistryTexts(path.Root, path.Key);
    }
    return {MakeBaseDirectory(base, library.Directory), overrides};
}

} // namespace treevault
