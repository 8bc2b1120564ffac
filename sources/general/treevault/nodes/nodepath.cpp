// SPDX-License-Identifier: MIT
// Making, parsing and writing of node paths.
#include "general/treevault/nodes/nodepath.h"

#include "common/errorhandling.h"

#include <algorithm>
#include <new>

namespace treevault {

PathRef PathRef::Make(WideView name, PathRef parent) {
    if (name.size() > 0xFFFFFFFFu)
        ThrowHr(E_INVALIDARG);
    void* memory = ::operator new(sizeof(NodePathLink) + name.size() * sizeof(WCHAR));
    PathRef path;
    path.Link =
        new (memory) NodePathLink{std::move(parent), {1}, static_cast<uint32_t>(name.size())};
    name.copy(reinterpret_cast<WCHAR*>(path.Link + 1), name.size());
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

NodeName MakeNodeName(WideView name) {
    if (FindUnit(name, PathSeparator) != name.size())
        ThrowHr(TREEVAULT_E_INVALID_NAME);
    return NodeName(name);
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

// What lies above the place at `end`, where a separator or the end of the text stands.
PathRef ParseAbove(WideView text, size_t end) {
    bool isPlain = true; // no two separators stand side by side
    for (size_t last = 0, next; last < end; last = next) {
        next = FindUnit(text, PathSeparator, last + 1);
        isPlain = isPlain && next != last + 1;
    }
    if (!isPlain)
        return ChainOf(text.substr(0, end));
    return end == 0 ? PathRef() : PathRef::Make(text.substr(1, end - 1), PathRef());
}

void CheckPathText(WideView text) {
    if (text.empty() || text.front() != PathSeparator ||
        (text.size() > 1 && text.back() == PathSeparator))
        ThrowHr(TREEVAULT_E_INVALID_NAME);
}

} // namespace

std::optional<NodePath> ParsePath(WideView text) {
    CheckPathText(text);
    if (text.size() == 1)
        return std::nullopt;
    const size_t last = text.rfind(PathSeparator);
    return NodePath{ParseAbove(text, last), NodeName(text.substr(last + 1))};
}

PathRef ParseParentPath(WideView text) {
    CheckPathText(text);
    return text.size() == 1 ? PathRef() : ParseAbove(text, text.size());
}

namespace {

// "\" and the name of each link from the top down, with room for `more` units behind.
WideText JoinLinks(const PathRef& path, size_t more) {
    size_t length = 0;
    for (const PathRef* link = &path; *link; link = &(*link)->ParentLink)
        length += 1 + (*link)->NameLength;
    WideText text;
    text.reserve(length + more);
    text.assign(length, PathSeparator);
    for (const PathRef* link = &path; *link; link = &(*link)->ParentLink) {
        const WideView name = (*link)->Name();
        length -= name.size();
        name.copy(text.data() + length, name.size());
        --length;
    }
    return text;
}

} // namespace

WideText ParentPathText(const PathRef& above) {
    return above ? JoinLinks(above, 0) : WideText(1, PathSeparator);
}

WideText FullPathText(const PathRef& above, WideView name) {
    WideText text = JoinLinks(above, 1 + name.size());
    text += PathSeparator;
    text += name;
    return text;
}

} // namespace treevault
