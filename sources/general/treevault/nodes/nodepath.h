// SPDX-License-Identifier: MIT
// Paths of nodes: a chain of shared links, one for each name, from a node up to the top.
#ifndef TREEVAULT_NODES_NODEPATH_H
#define TREEVAULT_NODES_NODEPATH_H

#include "common/ownercount.h"
#include "platform/widetext.h"

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

    // Puts the link below another parent if nobody shares it; false, with nothing changed, if not.
    bool MoveBelow(const PathRef& parent) noexcept;

    const NodePathLink* operator->() const noexcept { return Link; }
    const NodePathLink* Get() const noexcept { return Link; }
    explicit operator bool() const noexcept { return Link != nullptr; }

private:
    static void Drop(NodePathLink* link) noexcept;
    static void Free(NodePathLink* link) noexcept;

    NodePathLink* Link = nullptr;
};

// One step of a path, in one block with its name; above a node that was named by its path, mostly
// all of the steps as they stand in the text. Nodes and their descendants share it; it never
// changes while they do.
struct NodePathLink {
    PathRef ParentLink; // none at the top
    mutable std::atomic<uint32_t> Owners{1};
    uint32_t NameLength;

    // Zero-terminated.
    const WCHAR* NameText() const noexcept { return reinterpret_cast<const WCHAR*>(this + 1); }
    WideView Name() const noexcept { return {NameText(), NameLength}; }
};

inline void PathRef::Drop(NodePathLink* link) noexcept {
    if (link && IsLastOwner(link->Owners))
        Free(link);
}

// A new link. Raises 0x80040201 if the name holds a "\"; the empty name is a name.
PathRef MakePathLink(WideView name, const PathRef& parent);

// The chain of a text that begins with "\". Runs of separators count as one. None for "\" alone;
// raises 0x80040201 for a text that begins otherwise or, being longer, ends with a separator.
PathRef ParsePath(WideView text);

// "\" at the top.
WideText ParentPathText(const PathRef& path);
WideText FullPathText(const PathRef& path);

} // namespace treevault

#endif
