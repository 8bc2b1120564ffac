// SPDX-License-Identifier: MIT
// Making, parsing and writing of node paths.
#include "general/treevault/nodes/nodepath.h"

#include "common/errorhandling.h"

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
    if (name.find(PathSeparator) != WideView::npos)
        ThrowHr(TREEVAULT_E_INVALID_NAME);
    return PathRef::Make(name, parent);
}

namespace {

// One link for all of the names, unless separators stand side by side between them.
PathRef ParseNames(WideView names) {
    constexpr WCHAR twoSeparators[] = {PathSeparator, PathSeparator};
    if (names.empty())
        return PathRef();
    if (names.find(twoSeparators, 0, 2) == WideView::npos)
        return PathRef::Make(names, PathRef());
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
    if (text.size() == 1)
        return PathRef();
    const size_t first = text.find_first_not_of(PathSeparator);
    const size_t name = text.rfind(PathSeparator) + 1;
    const size_t end = first == name ? name : text.find_last_not_of(PathSeparator, name - 1) + 1;
    return PathRef::Make(text.substr(name), ParseNames(text.substr(first, end - first)));
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
