// SPDX-License-Identifier: MIT
// The data of every benchmark: nodes with names, types and four attributes each, the same in every
// run and for TreeVault and its references alike.
#ifndef TREEVAULT_BENCHMARKS_WORKLOAD_H
#define TREEVAULT_BENCHMARKS_WORKLOAD_H

#include <treevault/treevault.h>

#include <cstdint>
#include <string>
#include <vector>

namespace treevault::benchmarks {

using Text = std::basic_string<WCHAR>;

// The names of the attributes, in the order in which they are written.
inline constexpr const WCHAR* NumberName = TREEVAULT_WIDE("Count");
inline constexpr const WCHAR* GuidName = TREEVAULT_WIDE("Guid");
inline constexpr const WCHAR* StampName = TREEVAULT_WIDE("Stamp");
inline constexpr const WCHAR* TitleName = TREEVAULT_WIDE("Title");

// The names of the attributes for references whose text is narrow.
inline constexpr const char* NarrowNumberName = "Count";
inline constexpr const char* NarrowGuidName = "Guid";
inline constexpr const char* NarrowStampName = "Stamp";
inline constexpr const char* NarrowTitleName = "Title";

// The texts of a node for them, so that nobody converts while the time runs.
struct NarrowTexts {
    std::string Name;
    std::string Type;
    std::string Title;
};

struct NodeData {
    Text Name;        // 8 to 16 letters, unlike any other of the workload
    const Text* Type; // one of 16
    int32_t Number;
    GUID Id;
    uint64_t Stamp;
    Text Title; // 12 letters
    const NarrowTexts* Narrow;
};

// A tree in breadth-first order; node 0 is the root.
struct Workload {
    size_t FanOut;
    std::vector<NodeData> Nodes;

    size_t FirstChild(size_t node) const { return node * FanOut + 1; }
    size_t ChildCount(size_t node) const { return FirstChild(node) < Nodes.size() ? FanOut : 0; }
};

// 111,111 nodes: ten children each, five levels below the root.
const Workload& DeepWorkload();

// A root with 100,000 children.
const Workload& FlatWorkload();

// A tree of another size, ten children to a node with `levels` levels in all. Beyond the size of
// the deep workload the nodes repeat; siblings always differ.
Workload BalancedWorkload(size_t levels);

} // namespace treevault::benchmarks

#endif
