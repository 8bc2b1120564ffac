// SPDX-License-Identifier: MIT
// Search, insertion and removal in the pages of a child index.
#include "general/treevault/nodes/childindex.h"

#include <algorithm>
#include <iterator>

namespace treevault {

size_t ChildIndex::PageOf(WideView name) const noexcept {
    const auto behind = std::upper_bound(Pages->begin() + 1, Pages->end(), name,
                                         [](WideView wanted, const Page& page) {
                                             return CompareText(wanted, page.front().Name) < 0;
                                         });
    return static_cast<size_t>(behind - Pages->begin()) - 1;
}

size_t ChildIndex::Position(const Page& page, WideView name) noexcept {
    const auto found =
        std::lower_bound(page.begin(), page.end(), name, [](const Entry& entry, WideView wanted) {
            return CompareText(entry.Name, wanted) < 0;
        });
    return static_cast<size_t>(found - page.begin());
}

CACNodeImpl* ChildIndex::Find(WideView name) const noexcept {
    if (!Pages)
        return nullptr;
    const Page& page = (*Pages)[PageOf(name)];
    const size_t at = Position(page, name);
    return at < page.size() && EqualText(page[at].Name, name) ? page[at].Child : nullptr;
}

// The upper half becomes a page of its own.
void ChildIndex::Split(size_t at) {
    Page upper;
    upper.reserve(PageLimit);
    if (Pages->size() == Pages->capacity())
        Pages->reserve(2 * Pages->size());
    Page& page = (*Pages)[at];
    const auto middle = page.begin() + PageLimit / 2;
    upper.assign(std::make_move_iterator(middle), std::make_move_iterator(page.end()));
    page.erase(middle, page.end());
    Pages->insert(Pages->begin() + static_cast<ptrdiff_t>(at) + 1, std::move(upper));
}

bool ChildIndex::Insert(const WideString& name, CACNodeImpl* child) {
    if (!Pages) {
        auto pages = std::make_unique<std::vector<Page>>(1);
        pages->front().reserve(FirstCapacity);
        pages->front().push_back({name, child});
        Pages = std::move(pages);
        return true;
    }
    size_t at = PageOf(name);
    size_t position = Position((*Pages)[at], name);
    if (position < (*Pages)[at].size() && (*Pages)[at][position].Name == name)
        return false;
    if ((*Pages)[at].size() == PageLimit) {
        Split(at);
        if (position > PageLimit / 2) {
            position -= PageLimit / 2;
            ++at;
        }
    }
    Page& page = (*Pages)[at];
    page.insert(page.begin() + static_cast<ptrdiff_t>(position), Entry{name, child});
    return true;
}

void ChildIndex::Erase(WideView name) noexcept {
    const size_t at = PageOf(name);
    Page& page = (*Pages)[at];
    page.erase(page.begin() + static_cast<ptrdiff_t>(Position(page, name)));
    if (page.empty())
        Pages->erase(Pages->begin() + static_cast<ptrdiff_t>(at));
    if (Pages->empty())
        Pages.reset();
}

} // namespace treevault
