// SPDX-License-Identifier: MIT
// Reading of a filter node, selection and hand-out.
#include "general/treevault/storage/nodesbypathfilter.h"

#include "common/errorhandling.h"
#include "common/textcompare.h"
#include "general/treevault/nodes/nodeerrors.h"
#include "general/treevault/nodes/nodereading.h"
#include "general/treevault/storage/nodemaking.h"

#include <algorithm>

namespace treevault {

namespace {

constexpr WideView TopPath = TV_W("\\");

WideView UntilNul(const void* data, size_t bytes) {
    const WideView text(static_cast<const WCHAR*>(data), bytes / sizeof(WCHAR));
    return text.substr(0, FindUnit(text, WCHAR()));
}

// The path is required: a missing one is raised like any other failure.
WideText ReadNodePath(IACNode* filter) {
    const ValueType wanted = VtStringW;
    WCHAR first[0x80];
    WideText more;
    WCHAR* buffer = first;
    size_t capacity = sizeof first;
    for (;;) {
        size_t bytes = capacity;
        const HRESULT hr = filter->GetAttribute(TV_W("NodePath"), &wanted, buffer, &bytes, nullptr);
        if (hr != TREEVAULT_E_INSUFFICIENT_BUFFER || bytes <= capacity) {
            HRES{hr};
            return WideText(UntilNul(buffer, std::min(bytes, capacity)));
        }
        more.resize(bytes / sizeof(WCHAR) + 1);
        buffer = more.data();
        capacity = more.size() * sizeof(WCHAR);
    }
}

void CheckPath(WideView path) {
    if (!path.empty() && path.front() == PathSeparator)
        return;
    // A bare name would be a search through the whole storage, which there is not.
    ThrowHr(path.find(PathSeparator) == WideView::npos ? E_NOTIMPL : TREEVAULT_E_STG_BAD_PATH);
}

} // namespace

// A node of the library is looked at where its values lie: mostly it holds but a path, as text, and
// what it lacks is asked for only where the question leaves a trace.
CMemoryStorage::CNodesByPathFilter::CNodesByPathFilter(IACNode* filter, AttributeTable parameters,
                                                       bool handOutStored)
    : HandOutStored(handOutStored), Parameters(std::move(parameters)) {
    const bool looksInside =
        Parameters && !WasSeverityEnabled(SeverityDbg2) && !IsAdvancedErrorInfoEnabled();
    const AttributeEntry* const path = looksInside ? Parameters.Find(TV_W("NodePath")) : nullptr;
    if (path && path->Type == VtStringW)
        NodePath = UntilNul(path->Value.Data(), path->Value.Size());
    else
        NodePath = ReadPath = ReadNodePath(filter);
    const auto read = [&](const WCHAR* name, ValueType wantedType, auto& value) {
        return (!looksInside || Parameters.Find(name)) &&
               ReadOptional(filter, name, wantedType, value);
    };
    uint8_t isParent = 0;
    if (read(TV_W("IsParent"), VtBool, isParent))
        IsParent = isParent != 0;
    int32_t maxDepth = 0;
    if (read(TV_W("MaxDepth"), VtUInt32, maxDepth))
        MaxDepth = maxDepth;
    CheckPath(NodePath);
    if (!ReadPath.empty())
        Parameters = AttributeTable();
}

HRESULT CMemoryStorage::CNodesByPathFilter::Lookup(const GUID* iid, void** out) noexcept {
    return LookupInterface(iid, out, this,
                           InterfaceEntry{IID_INodeFilter, static_cast<INodeFilter*>(this)});
}

void CMemoryStorage::CNodesByPathFilter::Prepare(CMemoryStorage& storage) {
    NodeQueue.clear();
    NodeQueue.reserve(QueuedInside);
    NextInQueue = 0;
    if (NodePath == TopPath) {
        if (!IsParent)
            ThrowHr(TREEVAULT_E_STG_BAD_PATH); // the place above the roots is no node
        storage.PvtForEachRoot([&](const NodeRef& root) { NodeQueue.push_back(root); });
        return;
    }
    AnyNode node = storage.PvtFindNodeByPath(NodePath, false, nullptr);
    if (!node)
        return;
    if (!IsParent) {
        NodeQueue.push_back(std::move(node).Take());
        return;
    }
    size_t count = 0;
    HRES{node->GetChildCount(&count)};
    if (node.Own())
        NodeQueue.reserve(count); // a client's node may tell what it likes
    for (size_t at = 0; at < count; ++at) {
        NodeRef child;
        HRES{node->GetChildByIndex(at, child.Put())};
        NodeQueue.push_back(std::move(child));
    }
}

void CMemoryStorage::CNodesByPathFilter::GetNext(IACNode** out) {
    *out = nullptr;
    if (NextInQueue == NodeQueue.size())
        return;
    NodeRef node = std::move(NodeQueue[NextInQueue++]);
    if (!HandOutStored)
        node = CloneNode(node.Get(), static_cast<uint64_t>(MaxDepth));
    *out = node.Detach();
}

} // namespace treevault
