// SPDX-License-Identifier: MIT
// The search for what is to be hidden, and the masking of it in a clone. The clone is walked anew:
// nobody else can change it, so what is walked there is what will be shown.
#include "general/treevault/presentation/masking.h"

#include "general/treevault/nodes/nodereading.h"

#include <vector>

namespace treevault {

namespace {

// A node that the walk is inside of.
struct Level {
    explicit Level(Ref<IACNode> node, bool enter) : Node(std::move(node)) {
        if (enter)
            HRES{Node->GetChildCount(&ChildCount)};
    }

    Ref<IACNode> Node;
    size_t ChildCount = 0;
    size_t NextChild = 0;
};

// Calls `visit` with the node and those down to `depth` levels below it, a parent before its
// children, until one call returns true; tells whether one did. Nesting costs heap and no stack.
template <class Visit>
bool AnyNode(IACNode* root, uint64_t depth, const Visit& visit) {
    std::vector<Level> inside;
    const auto enter = [&](Ref<IACNode> node) {
        if (visit(node.Get()))
            return true;
        inside.emplace_back(std::move(node), inside.size() < depth);
        return false;
    };
    if (enter(Ref<IACNode>::Share(root)))
        return true;
    while (!inside.empty()) {
        Level& top = inside.back();
        if (top.NextChild == top.ChildCount) {
            inside.pop_back();
            continue;
        }
        Ref<IACNode> child;
        HRES{top.Node->GetChildByIndex(top.NextChild++, child.Put())};
        if (enter(std::move(child)))
            return true;
    }
    return false;
}

WideText TypeOf(IACNode* node) {
    WideText type;
    HRES{TryReadText([&](WCHAR* buffer, size_t* size) { return node->GetType(buffer, size); },
                     type)};
    type.pop_back();
    return type;
}

bool HasAttribute(IACNode* node, const WCHAR* name) {
    const HRESULT hr = node->GetAttribute(name, nullptr, nullptr, nullptr, nullptr);
    if (hr == TREEVAULT_E_NOT_FOUND)
        return false;
    HRES{hr};
    return true;
}

void MaskNode(IACNode* node, const HiddenAttrsConfig& config) {
    constexpr WideView mask = HiddenAttrsConfig::Mask;
    config.AnyName(TypeOf(node), [&](const WCHAR* name) {
        if (HasAttribute(node, name))
            HRES{node->SetAttribute(name, VtStringW, mask.data(),
                                    (mask.size() + 1) * sizeof(WCHAR))};
        return false;
    });
}

} // namespace

Ref<IACNode> MaskHiddenAttributes(IACNode* node, uint64_t depth, const HiddenAttrsConfig& config) {
    if (config.HidesNothing())
        return Ref<IACNode>::Share(node);
    const KeptErrorRecord record; // what a node lacks may leave one
    const auto hasHidden = [&](IACNode* each) {
        return config.AnyName(TypeOf(each),
                              [&](const WCHAR* name) { return HasAttribute(each, name); });
    };
    if (!AnyNode(node, depth, hasHidden))
        return Ref<IACNode>::Share(node);
    Ref<IACNode> clone;
    HRES{node->Clone(depth, 0, clone.Put())};
    AnyNode(clone.Get(), depth, [&](IACNode* each) {
        MaskNode(each, config);
        return false;
    });
    return clone;
}

} // namespace treevault
