// SPDX-License-Identifier: MIT
// Making, parsing and writing of node paths.
#include "general/treevault/nodes/nodepath.h"

#include "common/errorhandling.h"

#include <algorithm>

namespace treevault {

PathRef::PathRef(const PathRef& other) noexcept : Link(other.Link) {
    if (Link)
        Link->Owners.fetch_add(1, std::memory_order_relaxed);
}

PathRef PathRef::Make(WideString name, PathRef parent) {
    PathRef path;
    path.Link = new NodePathLink{std::move(name), std::move(parent)};
    return path;
}

void PathRef::Drop(NodePathLink* link) noexcept {
    while (link && IsLastOwner(link->Owners)) {
        NodePathLink* const parent = std::exchange(link->ParentLink.Link, nullptr);
        delete link;
        link = parent;
    }
}

bool PathRef::MoveBelow(const PathRef& parent) noexcept {
    if (Link->Owners.load(std::memory_order_acquire) != 1)
        return false;
    Link->ParentLink = parent;
    return true;
}

PathRef MakePathLink(const WideString& name, const PathRef& parent) {
    if (name.View().find(PathSeparator) != WideView::npos)
        ThrowHr(TREEVAULT_E_INVALID_NAME);
    return PathRef::Make(name, parent);
}

PathRef ParsePath(WideView text) {
    if (text.empty() || text.front() != PathSeparator ||
        (text.size() > 1 && text.back() == PathSeparator))
        ThrowHr(TREEVAULT_E_INVALID_NAME);
    PathRef path;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find(PathSeparator, begin), text.size());
        if (end != begin)
            path = PathRef::Make(WideString(text.substr(begin, end - begin)), path);
        begin = end + 1;
    }
    return path;
}

namespace {

// "\" and the name of each link from the top down to `path`, in one allocation.
WideText JoinLinks(const PathRef& path) {
    size_t length = 0;
    for (const PathRef* link = &path; *link; link = &(*link)->ParentLink)
        length += 1 + (*link)->Name.Length();
    WideText text(length, PathSeparator);
    for (const PathRef* link = &path; *link; link = &(*link)->ParentLink) {
        const WideView name = (*link)->Name;
        length -= name.size();
        name.copy(text.data() + length, name.size());
        --length;
    }
    return text;
}

} // namespace

WideText ParentPathText(const PathRef& path) {
    return path->ParentLink ? JoinLinks(path->ParentLink) : WideText(1, PathSeparator);
}

WideText FullPathText(const PathRef& path) {
    return JoinLinks(path);
}

} // namespace treevault
