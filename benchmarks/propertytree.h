// SPDX-License-Identifier: MIT
// The nodes in a property tree of Boost, in the form that its documents have: a node is an entry
// under its name, its type and attributes are the entries of its "<xmlattr>". All values are text.
#ifndef TREEVAULT_BENCHMARKS_PROPERTYTREE_H
#define TREEVAULT_BENCHMARKS_PROPERTYTREE_H

#include "workload.h"

#include <boost/property_tree/ptree.hpp>

#include <string>

namespace treevault::benchmarks {

class PropertyTree {
public:
    explicit PropertyTree(const Workload& workload);

    PropertyTree Clone() const { return *this; }

    // The text on one line.
    std::string Write() const;

    boost::property_tree::ptree& Root() { return Entries.front().second; }
    boost::property_tree::ptree& RootAttributes() { return Root().front().second; }

private:
    boost::property_tree::ptree Entries; // its only entry is the root node
};

// Parses a document of any form; nothing is converted.
boost::property_tree::ptree ReadWithPropertyTree(const std::string& text);

} // namespace treevault::benchmarks

#endif
