// SPDX-License-Identifier: MIT
#include "treewalk.h"

#include "failure.h"
#include "value.h"

#include <algorithm>

namespace treevault::program {

namespace {

// Has a function of the library fill a text that it sizes itself.
template <typename Function>
WideText ReadText(const char* what, Function&& function) {
    size_t size = 0;
    Check(function(nullptr, &size), what);
    WideText text(size, WCHAR());
    if (size != 0)
        Check(function(text.data(), &size), what);
    return text;
}

// A node on the way from the root to where the walk is.
struct Step {
    NodeHandle Node;
    uint64_t Next;
    uint64_t Count;
};

Step Enter(NodeHandle node, uint64_t level, const NodeVisitor& visit) {
    size_t count = 0;
    Check(AcnGetChildCount(node.Get(), &count), "cannot count children");
    visit(node.Get(), level, count);
    return {std::move(node), 0, count};
}

} // namespace

void WalkTree(NodeHandle root, uint64_t depth, const NodeVisitor& visit) {
    std::vector<Step> steps;
    steps.push_back(Enter(std::move(root), 0, visit));
    while (!steps.empty()) {
        Step& step = steps.back();
        const bool isDeepest = depth != TREEVAULT_ALL_LEVELS && steps.size() > depth;
        if (step.Next == step.Count || isDeepest) {
            steps.pop_back();
            continue;
        }
        NodeHandle child;
        Check(AcnGetChildByIndex(step.Node.Get(), step.Next++, child.Receive()),
              "cannot read a child");
        steps.push_back(Enter(std::move(child), steps.size(), visit));
    }
}

WideText NodeName(IACNode* node, NodeNameKind kind) {
    WideText name = ReadText("cannot read a name", [&](WCHAR* buffer, size_t* size) {
        return AcnGetNodeName(node, kind, buffer, size);
    });
    name.pop_back();
    return name;
}

WideText NodeType(IACNode* node) {
    WideText type = ReadText("cannot read a type", [&](WCHAR* buffer, size_t* size) {
        return AcnGetNodeType(node, buffer, size);
    });
    type.pop_back();
    return type;
}

std::vector<WideText> AttributeNames(IACNode* node) {
    const WideText all = ReadText("cannot read names", [&](WCHAR* buffer, size_t* size) {
        return AcnGetAttributeNames(node, buffer, size);
    });
    return SplitTexts(all);
}

} // namespace treevault::program
