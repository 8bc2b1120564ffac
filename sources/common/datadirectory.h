// SPDX-License-Identifier: MIT
// Where files lie whose settings give relative paths: under one base directory, except for paths
// that are mapped to another place.
#ifndef TREEVAULT_COMMON_DATADIRECTORY_H
#define TREEVAULT_COMMON_DATADIRECTORY_H

#include "platform/registry.h"
#include "platform/widetext.h"

#include <map>
#include <vector>

namespace treevault {

using PathNames = std::vector<WideText>;

// The names between "\" and "/" without the empty ones.
PathNames SplitPath(WideView path);

// Whether the path begins with a separator or names a drive.
bool IsAbsolutePath(WideView path) noexcept;

// Compares name by name, without regard to the case of A to Z. What begins another path stands
// before it.
struct PathNamesLess {
    bool operator()(const PathNames& left, const PathNames& right) const noexcept;
};

class DataDirectoryResolver {
public:
    // `overrides` maps relative paths to targets; variables in both are expanded.
    DataDirectoryResolver(WideText baseDirectory, const std::map<WideText, WideText>& overrides);

    // Expands variables. An absolute path is final then. Of a relative one the longest beginning
    // that is overridden is replaced, and what is still relative follows the base directory
    // without a separator between them.
    WideText Resolve(const WideText& path) const;

    const WideText& BaseDirectory() const noexcept { return Base; }

private:
    bool FindOverride(const WideText& path, WideText& result) const;

    WideText Base;
    std::map<PathNames, WideText, PathNamesLess> Overrides;
};

struct RegistryPath {
    RegistryRoot Root;
    WideText Key;
};

// The first name of the text tells the root, exactly and in upper case; without it the whole text
// is a key of the local machine.
RegistryPath ParseRegistryPath(const WideText& text);

// The base directory for the value of a setting: the value, behind the library's directory if it is
// relative or empty.
WideText MakeBaseDirectory(const WideText& setting, const WideText& libraryDirectory);

// Reads the settings `DataDirectoryPath` and `DataDirectoryPathOverrideRegKey`.
DataDirectoryResolver ReadDataDirectory();

} // namespace treevault

#endif
