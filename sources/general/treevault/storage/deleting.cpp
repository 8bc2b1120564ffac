// SPDX-License-Identifier: MIT
// Deleting what a filter selects.
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "general/treevault/presentation/nodelogview.h"
#include "general/treevault/storage/nodesbypathfilter.h"

namespace treevault {

// The filter is read now, and selects when the group runs: what earlier operations of the group did
// is seen.
HRESULT CMemoryStorage::DeleteData(IOperationsGroup* group, IACNode* filter) {
    const auto writeName = [](WideStream& line) { line << TV_W("CMemoryStorage::DeleteData"); };
    return NamedBoundary(SeverityDbg2, writeName, [&] {
        const FunctionTrace trace(TV_W("CMemoryStorage::DeleteData"), SeverityDbg2);
        LogPointer(TV_W("GroupContext: "), group);
        LogNode(SeverityDbg2, TV_W("Filter: "), filter);
        CheckOutPointer(filter);
        const Ref<CPendingOperations> journal = PvtJournalOf(group);
        const Ref<INodeFilter> selection = CreateFilter(filter, true);
        journal->AddOperation([this, selection] { selection->Prepare(*this); });
        journal->AddOperation(
            [this, selection, target = journal.Get()] { PvtDeleteFiltered(*selection, *target); });
        if (!group)
            PvtRunPrivateGroup(*journal);
    });
}

void CMemoryStorage::PvtDeleteFiltered(INodeFilter& filter, CPendingOperations& group) {
    for (;;) {
        NodeRef node;
        filter.GetNext(node.Put());
        if (!node)
            return;
        NodeRef parent;
        HRES{node->GetParent(parent.Put())};
        ModifyMask flags = 0;
        PvtRemoveNode(parent, node, group, &flags);
        if (parent && flags != 0)
            PvtSignalModified(parent.Get(), parent.Get(), flags, nullptr);
    }
}

} // namespace treevault
