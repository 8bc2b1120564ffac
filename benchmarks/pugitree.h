// SPDX-License-Identifier: MIT
// The nodes in a document of pugixml, of the same form as TreeVault's documents: one element for a
// node, one for each attribute. All values are text there.
#ifndef TREEVAULT_BENCHMARKS_PUGITREE_H
#define TREEVAULT_BENCHMARKS_PUGITREE_H

#include "structtree.h"

#include <pugixml.hpp>

#include <memory>
#include <string>

namespace treevault::benchmarks {

class PugiTree {
public:
    explicit PugiTree(const Workload& workload);

    PugiTree Clone() const;

    // Appends the document to `text`, on one line.
    void Write(std::string& text) const;

    // The value of an attribute of the root node, to read or to overwrite.
    pugi::xml_attribute ValueOf(const char* name) const;

private:
    PugiTree() = default;

    std::unique_ptr<pugi::xml_document> Document = std::make_unique<pugi::xml_document>();
};

// Parses `text` in place and builds the tree of its only node.
VectorTree ReadWithPugixml(std::string& text);

} // namespace treevault::benchmarks

#endif
