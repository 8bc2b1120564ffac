// SPDX-License-Identifier: MIT
// Boost.PropertyTree alone, through its plain interface.
#include "propertytree.h"

#include "plainforms.h"

#include <boost/property_tree/xml_parser.hpp>

#include <sstream>

namespace treevault::benchmarks {

namespace {

using boost::property_tree::ptree;

void AddNode(ptree& parent, const Workload& workload, size_t index) {
    const NodeData& data = workload.Nodes[index];
    ptree& node = parent.push_back({data.Narrow->Name, ptree()})->second;
    ptree& attributes = node.push_back({"<xmlattr>", ptree()})->second;
    char guid[39];
    FormatGuid(data.Id, guid);
    attributes.add("Type", data.Narrow->Type);
    attributes.add(NarrowNumberName, data.Number);
    attributes.add(NarrowGuidName, guid);
    attributes.add(NarrowStampName, data.Stamp);
    attributes.add(NarrowTitleName, data.Narrow->Title);
    const size_t first = workload.FirstChild(index);
    for (size_t child = first; child < first + workload.ChildCount(index); ++child)
        AddNode(node, workload, child);
}

} // namespace

PropertyTree::PropertyTree(const Workload& workload) {
    AddNode(Entries, workload, 0);
}

std::string PropertyTree::Write() const {
    std::ostringstream stream;
    boost::property_tree::write_xml(stream, Entries);
    return stream.str();
}

ptree ReadWithPropertyTree(const std::string& text) {
    std::istringstream stream(text);
    ptree entries;
    boost::property_tree::read_xml(stream, entries);
    return entries;
}

} // namespace treevault::benchmarks
