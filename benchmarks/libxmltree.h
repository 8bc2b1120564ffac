// SPDX-License-Identifier: MIT
// The nodes in a document of libxml2, of the same form as TreeVault's documents.
#ifndef TREEVAULT_BENCHMARKS_LIBXMLTREE_H
#define TREEVAULT_BENCHMARKS_LIBXMLTREE_H

#include "structtree.h"

#include <libxml/tree.h>

#include <memory>
#include <string>

namespace treevault::benchmarks {

class LibxmlTree {
public:
    explicit LibxmlTree(const Workload& workload);

    LibxmlTree Clone() const;

    // Appends the document to `text`, on one line.
    void Write(std::string& text) const;

private:
    struct Free {
        void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    };

    explicit LibxmlTree(xmlDoc* document) : Document(document) {}

    std::unique_ptr<xmlDoc, Free> Document;
};

// Parses `text` and builds the tree of its only node.
VectorTree ReadWithLibxml(const std::string& text);

} // namespace treevault::benchmarks

#endif
