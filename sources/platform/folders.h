// SPDX-License-Identifier: MIT
// Folders of the file system.
#ifndef TREEVAULT_PLATFORM_FOLDERS_H
#define TREEVAULT_PLATFORM_FOLDERS_H

#include "platform/widetext.h"

namespace treevault {

// Makes the last folder of the path if nothing is there. A failure shows when the folder is used.
void MakeFolder(const WideText& path);

// The path of what lies in `folder` under `name`, which is a single name: one separator between
// them, and "." and ".." resolved. A name of a drive is a path of its own.
WideText JoinPath(const WideText& folder, const WideText& name);

} // namespace treevault

#endif
