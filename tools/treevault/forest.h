// SPDX-License-Identifier: MIT
// A storage that documents go into and come out of.
#ifndef TREEVAULT_PROGRAM_FOREST_H
#define TREEVAULT_PROGRAM_FOREST_H

#include "documentwriter.h"
#include "handles.h"
#include "widetext.h"

#include <functional>

namespace treevault::program {

// What a filter selects.
struct Selection {
    WideText Path{WCHAR('\\')};
    bool IsOfChildren = true; // the node's children, or the roots, in its place
    uint32_t Depth = UINT32_MAX;
};

class Forest {
public:
    // The switches are those of IStorageConfig.
    explicit Forest(bool buildsParents = true, bool isAtomic = true);

    // Tells the sink of every change from now on. It must outlive the forest.
    void Watch(IModifySink& sink);

    GroupHandle BeginGroup();

    // Reads a document as strictly as the library can, which throws DataFailure, and stores its
    // trees at their paths; with a group, when that is finalized. The result is that of the store.
    [[nodiscard]] HRESULT Store(const std::string& file, StoreMode mode,
                                IOperationsGroup* group = nullptr);
    [[nodiscard]] HRESULT Finalize(IOperationsGroup* group);

    // Stores a document that is to be there before anything else. Throws DataFailure.
    void Load(const std::string& file);

    // Throws DataFailure if there is no node of that path. `title` is the name of the document.
    void RequireNode(const WideText& path, const std::string& title) const;

    // Each throws DataFailure.
    void Delete(const Selection& selection);
    void Write(const Selection& selection, DocumentWriter& writer) const;

private:
    using BatchVisitor = std::function<void(IACNode** nodes, uint64_t count)>;
    void Visit(const Selection& selection, const BatchVisitor& visit) const;

    StorageHandle Storage;
};

} // namespace treevault::program

#endif
