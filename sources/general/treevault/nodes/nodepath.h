// SPDX-License-Identifier: MIT
// Paths of nodes: each node holds its own name, and shares with its siblings a chain of links for
// the names above it, up to the top.
#ifndef TREEVAULT_NODES_NODEPATH_H
#define TREEVAULT_NODES_NODEPATH_H

#include "common/ownercount.h"
#include "common/peekablepointer.h"
#include "common/textcompare.h"
#include "common/widestring.h"
#include "platform/widetext.h"

#include <optional>
#include <utility>

namespace treevault {

struct NodePathLink;

// A counted reference to a link, or none.
class PathRef {
public:
    PathRef() noexcept = default;
    PathRef(const PathRef& other) noexcept;
    PathRef(PathRef&& other) noexcept : Link(std::exchange(other.Link, nullptr)) {}
    PathRef& operator=(PathRef other) noexcept {
        std::swap(Link, other.Link);
        return *this;
    }
    ~PathRef() { Drop(Link); }

    // A new link below `parent`, whatever the name holds. Raises E_INVALIDARG for a name above
    // 0xFFFFFFFF code units; std::bad_alloc.
    static PathRef Make(WideView name, PathRef parent);

    // Asks the processor for the link; needs no lock.
    void Prefetch() const noexcept { Link.Prefetch(1); }

    const NodePathLink* operator->() const noexcept { return Link; }
    explicit operator bool() const noexcept { return Link != nullptr; }

private:
    static void Drop(NodePathLink* link) noexcept;
    static void Free(NodePathLink* link) noexcept;

    PeekablePointer<NodePathLink> Link;
};

// One step of a path, in one block with its name; above a node that was named by its path, mostly
// all of the steps as they stand in the text. What lies below shares it; it never changes.
struct NodePathLink {
    PathRef ParentLink; // none at the top
    mutable std::atomic<uint32_t> Owners{1};
    uint32_t NameLength;

    WideView Name() const noexcept {
        return {reinterpret_cast<const WCHAR*>(this + 1), NameLength};
    }
};

inline PathRef::PathRef(const PathRef& other) noexcept : Link(other.Link) {
    if (Link)
        Link->Owners.fetch_add(1, std::memory_order_relaxed);
}

inline void PathRef::Drop(NodePathLink* link) noexcept {
    if (link && IsLastOwner(link->Owners))
        Free(link);
}

// Most names fit into their node, so that a search reads no other memory.
using NodeName = BasicWideString<17>;

static_assert(sizeof(NodeName) == 40);

// What a node is called, and where it is.
struct NodePath {
    PathRef Above; // none at the top
    NodeName Name;
};

// Raises 0x80040201 if the name holds a "\"; the empty name is a name.
NodeName MakeNodeName(WideView name);

// The path of a text that begins with "\". Runs of separators count as one. None for "\" alone;
// raises 0x80040201 for a text that begins otherwise or, being longer, ends with a separator.
std::optional<NodePath> ParsePath(WideView text);

// The chain of such a text; none for "\".
PathRef ParseParentPath(WideView text);

// The name that begins at `begin`, which moves behind the separator that ends it.
inline WideView TakeName(WideView path, size_t& begin) noexcept {
    const size_t end = FindUnit(path, PathSeparator, begin);
    const WideView name = path.substr(begin, end - begin);
    begin = end + 1;
    return name;
}

// "\" at the top.
WideText ParentPathText(const PathRef& above);
WideText FullPathText(const PathRef& above, WideView name);

} // namespace treevault

#endif
