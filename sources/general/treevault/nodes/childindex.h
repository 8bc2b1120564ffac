// SPDX-License-Identifier: MIT
// Children by name: what finds one among a million siblings in logarithmic time and costs a leaf a
// pointer.
#ifndef TREEVAULT_NODES_CHILDINDEX_H
#define TREEVAULT_NODES_CHILDINDEX_H

#include "common/widestring.h"

#include <memory>
#include <vector>

namespace treevault {

class CACNodeImpl;

// An ordered map in two levels: pages of bounded size, sorted within and among themselves, so that
// an insertion moves little. Guarded by the lock of the parent. It does not count references.
class ChildIndex {
public:
    // Null when there is no child of that name.
    CACNodeImpl* Find(WideView name) const noexcept;

    // False, with nothing changed, when the name is taken; so is nothing when memory runs out.
    bool Insert(const WideString& name, CACNodeImpl* child);

    // The name must be there.
    void Erase(WideView name) noexcept;

    void Clear() noexcept { Pages.reset(); }

private:
    struct Entry {
        WideString Name;
        CACNodeImpl* Child;
    };
    using Page = std::vector<Entry>;

    static constexpr size_t FirstCapacity = 4;
    static constexpr size_t PageLimit = 128;

    // The page that holds the name or is the one to hold it; there must be a page.
    size_t PageOf(WideView name) const noexcept;
    static size_t Position(const Page& page, WideView name) noexcept;
    void Split(size_t page);

    std::unique_ptr<std::vector<Page>> Pages; // null without children; no page is empty
};

} // namespace treevault

#endif
