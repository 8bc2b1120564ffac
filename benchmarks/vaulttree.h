// SPDX-License-Identifier: MIT
// The same tree in TreeVault, made through the flat functions alone.
#ifndef TREEVAULT_BENCHMARKS_VAULTTREE_H
#define TREEVAULT_BENCHMARKS_VAULTTREE_H

#include "workload.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace treevault::benchmarks {

// A benchmark of failing calls would measure nothing.
inline void Require(HRESULT hr) {
    if (hr != S_OK) {
        std::fprintf(stderr, "unexpected result 0x%08X\n", static_cast<unsigned>(hr));
        std::abort();
    }
}

// The four attributes of every node.
inline void SetAttributes(IACNode* node, const NodeData& data) {
    Require(AcnSetAttribute(node, NumberName, VtInt32, &data.Number, sizeof data.Number));
    Require(AcnSetAttribute(node, TitleName, VtStringW, data.Title.c_str(),
                            (data.Title.size() + 1) * sizeof(WCHAR)));
    Require(AcnSetAttribute(node, GuidName, VtGuid, &data.Id, sizeof data.Id));
    Require(AcnSetAttribute(node, StampName, VtUInt64, &data.Stamp, sizeof data.Stamp));
}

class VaultTree {
public:
    explicit VaultTree(const Workload& workload) : Root(Build(workload, 0, nullptr)) {}
    explicit VaultTree(IACNode* root) : Root(root) {}
    VaultTree(VaultTree&& other) noexcept : Root(std::exchange(other.Root, nullptr)) {}
    VaultTree& operator=(VaultTree&& other) noexcept {
        std::swap(Root, other.Root);
        return *this;
    }
    ~VaultTree() { AcnCloseNodeHandle(Root); }

    VaultTree Clone() const {
        IACNode* clone = nullptr;
        Require(AcnCloneNode(Root, TREEVAULT_ALL_LEVELS, 0, &clone));
        return VaultTree(clone);
    }

    IACNode* Root;

private:
    // Gives the handle of the root; the others are closed as soon as they are not needed.
    static IACNode* Build(const Workload& workload, size_t index, IACNode* parent) {
        const NodeData& data = workload.Nodes[index];
        IACNode* node = nullptr;
        Require(AcnCreateNode(data.Name.c_str(), data.Type->c_str(), &node));
        SetAttributes(node, data);
        if (parent)
            Require(AcnAddChild(parent, node));
        const size_t first = workload.FirstChild(index);
        for (size_t child = first; child < first + workload.ChildCount(index); ++child)
            Build(workload, child, node);
        if (parent)
            AcnCloseNodeHandle(node);
        return node;
    }
};

} // namespace treevault::benchmarks

#endif
