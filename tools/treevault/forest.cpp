// SPDX-License-Identifier: MIT
#include "forest.h"

#include "document.h"
#include "failure.h"
#include "path.h"
#include "showntext.h"

#include <vector>

namespace treevault::program {

namespace {

void SetFlag(IACNode* node, const WCHAR* name, bool value) {
    const uint8_t byte = value ? 1 : 0;
    Check(AcnSetAttribute(node, name, VtBool, &byte, sizeof(byte)), "cannot set an attribute");
}

NodeHandle CreateNode(const WCHAR* type) {
    NodeHandle node;
    Check(AcnCreateNode(nullptr, type, node.Receive()), "cannot create a node");
    return node;
}

NodeHandle CreateFilter(const Selection& selection) {
    NodeHandle filter = CreateNode(TREEVAULT_FILTER_BY_PATH);
    Check(AcnSetAttribute(filter.Get(), TREEVAULT_WIDE("NodePath"), VtStringW,
                          selection.Path.c_str(), (selection.Path.size() + 1) * sizeof(WCHAR)),
          "cannot set an attribute");
    SetFlag(filter.Get(), TREEVAULT_WIDE("IsParent"), selection.IsOfChildren);
    Check(AcnSetAttribute(filter.Get(), TREEVAULT_WIDE("MaxDepth"), VtUInt32, &selection.Depth,
                          sizeof(selection.Depth)),
          "cannot set an attribute");
    return filter;
}

// Nodes that a retrieval hands out at a time.
struct Batch {
    static constexpr uint64_t Size = 64;

    Batch() = default;
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;
    ~Batch() { Clear(); }
    void Clear() {
        while (Count != 0)
            AcnCloseNodeHandle(Nodes[--Count]);
    }

    IACNode* Nodes[Size];
    uint64_t Count = 0;
};

} // namespace

Forest::Forest(bool buildsParents, bool isAtomic) {
    const NodeHandle configuration = CreateNode(nullptr);
    SetFlag(configuration.Get(), TREEVAULT_WIDE("BuildParentNodesIfMissing"), buildsParents);
    SetFlag(configuration.Get(), TREEVAULT_WIDE("MaintainAtomicity"), isAtomic);
    Check(StgCreateStorage(TREEVAULT_MEMORY_STORAGE, configuration.Get(), nullptr, 0,
                           Storage.Receive()),
          "cannot create a storage");
}

void Forest::Watch(IModifySink& sink) {
    void* found = nullptr;
    Check(Storage.Get()->QueryInterface(&IID_IModifySinkRegistry, &found), "cannot watch");
    auto* registry = static_cast<IModifySinkRegistry*>(found);
    GUID id;
    const HRESULT result = registry->RegisterSink(&sink, &id);
    registry->Release();
    Check(result, "cannot watch");
}

GroupHandle Forest::BeginGroup() {
    GroupHandle group;
    Check(StgCreateOperationsGroup(Storage.Get(), group.Receive()), "cannot begin a group");
    return group;
}

HRESULT Forest::Store(const std::string& file, StoreMode mode, IOperationsGroup* group) {
    Document document(file, NodeDeserializerFlagStrict);
    std::vector<NodeHandle> trees;
    while (NodeHandle node = document.Next())
        trees.push_back(std::move(node));
    std::vector<IACNode*> nodes;
    for (const NodeHandle& tree : trees)
        nodes.push_back(tree.Get());
    nodes.push_back(nullptr); // an array of no nodes is an array all the same
    return StgStoreData(Storage.Get(), group, mode, nodes.data(), trees.size());
}

HRESULT Forest::Finalize(IOperationsGroup* group) {
    return StgFinalizeOperationsGroup(Storage.Get(), group);
}

void Forest::Load(const std::string& file) {
    Check(Store(file, StoreMergeAll), InputTitle(file) + ": cannot store");
}

void Forest::RequireNode(const WideText& path, const std::string& title) const {
    if (path.size() == 1)
        return; // the place of the roots
    uint64_t found = 0;
    Visit({path, false, 0}, [&](IACNode**, uint64_t count) { found += count; });
    if (found == 0)
        throw DataFailure(title + ": there is no node " + Plain(path));
}

void Forest::Delete(const Selection& selection) {
    const NodeHandle filter = CreateFilter(selection);
    Check(StgDeleteData(Storage.Get(), nullptr, filter.Get()),
          "cannot delete " + Plain(selection.Path));
}

void Forest::Write(const Selection& selection, DocumentWriter& writer) const {
    Visit(selection, [&](IACNode** nodes, uint64_t count) {
        writer.Add(nodes, count, "cannot write a node");
    });
}

void Forest::Visit(const Selection& selection, const BatchVisitor& visit) const {
    const std::string what = "cannot select " + Plain(selection.Path);
    const NodeHandle filter = CreateFilter(selection);
    RetrievalHandle rest;
    Batch batch;
    Check(StgRetrieveData(Storage.Get(), filter.Get(), rest.Receive(), batch.Nodes, Batch::Size,
                          &batch.Count),
          what);
    while (batch.Count != 0) {
        visit(batch.Nodes, batch.Count);
        batch.Clear();
        Check(
            StgRetrieveNextData(Storage.Get(), rest.Get(), batch.Nodes, Batch::Size, &batch.Count),
            what);
    }
}

} // namespace treevault::program
