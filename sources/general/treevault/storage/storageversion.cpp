// SPDX-License-Identifier: MIT
// Version data of a storage, as a node.
#include "common/errorhandling.h"
#include "general/treevault/nodes/nodereading.h"
#include "general/treevault/storage/memorystorage.h"
#include "general/treevault/storage/nodemaking.h"

namespace treevault {

namespace {

constexpr const WCHAR* VersionType = TV_W("StorageVersionInfo");
constexpr const WCHAR* BackupIdName = TV_W("StorageBackupId");
constexpr const WCHAR* UsnName = TV_W("StorageUsn");

template <class Value>
void ReadRequired(IACNode* node, const WCHAR* name, ValueType wantedType, Value& value) {
    size_t size = sizeof(Value);
    HRES{node->GetAttribute(name, &wantedType, &value, &size, nullptr)};
}

} // namespace

HRESULT CMemoryStorage::GetVersionInfo(IACNode** out) {
    return Boundary([&] {
        CheckOutPointer(out);
        *out = nullptr;
        NodeRef node = CreateNode(nullptr, VersionType);
        HRES{node->SetAttribute(BackupIdName, VtGuid, &StorageBackupId, sizeof(GUID))};
        const uint64_t usn = StorageUsn.load();
        HRES{node->SetAttribute(UsnName, VtInt64, &usn, sizeof(usn))};
        *out = node.Detach();
    });
}

HRESULT CMemoryStorage::SetVersionInfo(IACNode* node) {
    return Boundary([&] {
        CheckOutPointer(node);
        if (ReadType(node) != VersionType)
            ThrowHr(E_INVALIDARG);
        GUID backupId = {};
        ReadRequired(node, BackupIdName, VtGuid, backupId);
        StorageBackupId = backupId;
        uint64_t usn = 0;
        ReadRequired(node, UsnName, VtUInt64, usn);
        StorageUsn.exchange(usn);
    });
}

} // namespace treevault
