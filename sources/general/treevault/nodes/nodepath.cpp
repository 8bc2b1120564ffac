// SPDX-License-Identifier: MIT
// Making, parsing and writing of node paths.
#include "general/treevault/nodes/nodepath.h"

#include "common/errorhandling.h"
#include "common/textcompare.h"

#include <algorithm>
#include <new>

namespace treevault {

PathRef::PathRef(const PathRef& other) noexcept : Link(other.Link) {
    if (Link)
        Link->Owners.fetch_add(1, std::memory_order_relaxed);
}

PathRef PathRef::Make(WideView name, PathRef parent) {
    if (name.size() > 0xFFFFFFFFu)
        ThrowHr(E_INVALIDARG);
    void* memory = ::operator new(sizeof(NodePathLink) + (name.size() + 1) * sizeof(WCHAR));
    PathRef path;
    path.Link =
        new (memory) NodePathLink{std::move(parent), {1}, static_cast<uint32_t>(name.size())};
    auto* const text = reinterpret_cast<WCHAR*>(path.Link + 1);
    name.copy(text, name.size());
    text[name.size()] = 0;
    return path;
}

// Long chains are taken apart in a loop.
void PathRef::Free(NodePathLink* link) noexcept {
    do {
        NodePathLink* const parent = std::exchange(link->ParentLink.Link, nullptr);
        ::operator delete(link);
        link = parent;
    } while (link && IsLastOwner(link->Owners));
}

bool PathRef::MoveBelow(const PathRef& parent) noexcept {
    if (Link->Owners.load(std::memory_order_acquire) != 1)
        return false;
    Link->ParentLink = parent;
    return true;
}

PathRef MakePathLink(WideView name, const PathRef& parent) {
    if (FindUnit(name, PathSeparator) != name.size())
        ThrowHr(TREEVAULT_E_INVALID_NAME);
    return PathRef::Make(name, parent);
}

namespace {

// A link for each of the names, between which separators may stand side by side.
PathRef ChainOf(WideView names) {
    PathRef path;
    for (size_t begin = 0; begin < names.size();) {
        const size_t end = std::min(names.find(PathSeparator, begin), names.size());
        if (end != begin)
            path = PathRef::Make(names.substr(begin, end - begin), std::move(path));
        begin = end + 1;
    }
    return path;
}

} // namespace

PathRef ParsePath(WideView text) {
    if (text.empty() || text.front() != PathSeparator ||
        (text.size() > 1 && text.back() == PathSeparator))
        ThrowHr(TREEVAULT_E_INVALID_NAME);
    size_t last = 0;
    bool isPlain = true; // no two separators stand side by side
    for (size_t next; (next = FindUnit(text, PathSeparator, last + 1)) != text.size(); last = next)
        isPlain = isPlain && next != last + 1;
    if (!isPlain || text.size() == 1)
        return ChainOf(text);
    PathRef above;
    if (last != 0)
        above = PathRef::Make(text.substr(1, last - 1), PathRef());
    return PathRef::Make(text.substr(last + 1), std::move(above));
}

namespace {

// "\" and the name of each link from the top down to `path`, in one allocation.
WideText JoinLinks(const PathRef& path) {
    size_t length = 0;
    for (const PathRef* link = &path; *link; link = &(*link)->ParentLink)
        length += 1 + (*link)->NameLength;
    WideText text(length, PathSeparator);
    for (const PathRef* link = &path; *link; link = &(*link)->ParentLink) {
        const WideView name = (*link)->Name();
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
