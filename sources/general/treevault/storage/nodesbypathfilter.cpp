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

WideText UntilNul(const void* data, size_t bytes) {
    const WideView text(static_cast<const WCHAR*>(data), bytes / sizeof(WCHAR));
    return WideText(text.substr(0, FindUnit(text, WCHAR())));
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
            return UntilNul(buffer, std::min(bytes, capacity));
        }
        more.resize(bytes / sizeof(WCHAR) + 1);
        buffer = more.data();
        capacity = more.size() * sizeof(WCHAR);
    }
}

// Reads the node of a filter. One of the library is looked at where its values lie: mostly it holds
// but a path, as text. What it lacks is asked for only where the question leaves a trace.
class FilterReader {
public:
    explicit FilterReader(const AnyNode& filter)
        : Filter(filter.Get()), IsOwn(filter.Own() && !WasSeverityEnabled(SeverityDbg2) &&
                                      !IsAdvancedErrorInfoEnabled()) {
        if (IsOwn)
            Attributes = filter.Own()->GetAttributeTable();
    }

    WideText Path() const {
        const AttributeEntry* const entry = Attributes.Find(TV_W("NodePath"));
        return entry && entry->Type == VtStringW
                   ? UntilNul(entry->Value.Data(), entry->Value.Size())
                   : ReadNodePath(Filter);
    }

    template <class Value>
    bool Read(const WCHAR* name, ValueType wantedType, Value& value) const {
        return (!IsOwn || Attributes.Find(name)) && ReadOptional(Filter, name, wantedType, value);
    }

private:
    IACNode* Filter;
    bool IsOwn;
    AttributeTable Attributes;
};

void CheckPath(const WideText& path) {
    if (!path.empty() && path.front() == PathSeparator)
        return;
    // A bare name would be a search through the whole storage, which there is not.
    ThrowHr(path.find(PathSeparator) == WideText::npos ? E_NOTIMPL : TREEVAULT_E_STG_BAD_PATH);
}

} // namespace

CMemoryStorage::CNodesByPathFilter::CNodesByPathFilter(const AnyNode& filter, bool handOutStored)
    : HandOutStored(handOutStored) {
    const FilterReader reader(filter);
    NodePath = reader.Path();
    uint8_t isParent = 0;
    if (reader.Read(TV_W("IsParent"), VtBool, isParent))
        IsParent = isParent != 0;
    int32_t maxDepth = 0;
    if (reader.Read(TV_W("MaxDepth"), VtUInt32, maxDepth))
        MaxDepth = maxDepth;
    CheckPath(NodePath);
}

HRESULT CMemoryStorage::CNodesByPathFilter::Lookup(const GUID* iid, void** out) noexcept {
    return LookupInterface(iid, out, this,
                           InterfaceEntry{IID_INodeFilter, static_cast<INodeFilter*>(this)});
}

void CMemoryStorage::CNodesByPathFilter::Prepare(CMemoryStorage& storage) {
    NodeQueue.clear();
    NextInQueue = 0;
    if (NodePath == TopPath) {
        if (!IsParent)
            ThrowHr(TREEVAULT_E_STG_BAD_PATH); // the place above the roots is no node
        storage.PvtForEachRoot([&](const NodeRef& root) { NodeQueue.push_back(root); });
        return;
    }
    const AnyNode node = storage.PvtFindNodeByPath(NodePath, false, nullptr);
    if (!node)
        return;
    if (!IsParent) {
        NodeQueue.push_back(node);
        return;
    }
    size_t count = 0;
    HRES{node->GetChildCount(&count)};
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
