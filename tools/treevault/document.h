// SPDX-License-Identifier: MIT
// A document that is read tree by tree.
#ifndef TREEVAULT_PROGRAM_DOCUMENT_H
#define TREEVAULT_PROGRAM_DOCUMENT_H

#include "handles.h"

#include <string>

namespace treevault::program {

class Document {
public:
    // Reads the whole file and closes it. `flags` as for AcnStartDeserialization. Throws
    // DataFailure.
    Document(const std::string& name, uint32_t flags);

    // The next tree, or nothing at the end. Throws DataFailure, whose message tells which of the
    // top-level nodes it is.
    NodeHandle Next();

    // Trees read so far.
    uint64_t Count() const { return TreeCount; }

private:
    std::string Title;
    DeserializerHandle Reader;
    uint64_t TreeCount = 0;
};

} // namespace treevault::program

#endif
