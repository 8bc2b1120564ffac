// SPDX-License-Identifier: MIT
// The node itself: creation, lookup, name and type as text.
#include "general/treevault/nodes/acnodeimpl.h"

#include "common/components/componentsmodule.h"
#include "common/errorhandling.h"
#include "common/functiontrace.h"
#include "common/textout.h"
#include "general/treevault/nodes/nodeerrors.h"

namespace treevault {

namespace {

const ClassRegistration nodeClass(CLSID_ACNode, [](const GUID* iid, void** out) {
    return CreateComponent<CACNodeImpl>(iid, out, nullptr, nullptr);
});

// The path that a creator's name describes.
NodePath InitialPath(const WCHAR* name) {
    if (!name)
        return {PathRef(), NodeName(GuidToString(NewGuid(), GuidFormPlain))};
    if (*name != PathSeparator)
        return {PathRef(), MakeNodeName(name)};
    std::optional<NodePath> path = ParsePath(name);
    if (!path)
        ThrowHr(TREEVAULT_E_INVALID_NAME);
    return std::move(*path);
}

} // namespace

CACNodeImpl::CACNodeImpl(const WCHAR* name, const WCHAR* type) {
    const FunctionTrace trace(TV_W("CACNodeImpl::CACNodeImpl"));
    LogTraced(SeverityDbg3, [&](WideStream& line) {
        line << TV_W("Creating: Name=") << name << TV_W(" Type=") << type;
    });
    NodePath path = InitialPath(name);
    Name = std::move(path.Name);
    Above = std::move(path.Above);
    if (type)
        TypeName = WideString(type);
}

CACNodeImpl::CACNodeImpl(const PathRef& above, const NodeName& name,
                         const AttributeTable& attributes, const WideString& type)
    : Attributes(attributes), Name(name), Above(above), TypeName(type) {
    const FunctionTrace trace(TV_W("CACNodeImpl::CACNodeImpl"));
    LogTraced(SeverityDbg3, [&](WideStream& line) {
        line << TV_W("Cloning: Name=") << ShortName() << TV_W(" Type=") << TypeName.View();
    });
}

HRESULT CACNodeImpl::Lookup(const GUID* iid, void** out) noexcept {
    return LookupInterface(iid, out, this, InterfaceEntry{IID_IACNode, static_cast<IACNode*>(this)},
                           InterfaceEntry{IID_ACNodeImpl, this});
}

Ref<CACNodeImpl> CACNodeImpl::GetImpl(IACNode* node) {
    void* impl = nullptr;
    HRES(node->QueryInterface(&IID_ACNodeImpl, &impl));
    return Ref<CACNodeImpl>::Attach(static_cast<CACNodeImpl*>(impl));
}

Ref<CACNodeImpl> CACNodeImpl::TryGetImpl(IACNode* node) {
    void* impl = nullptr;
    if (FAILED(node->QueryInterface(&IID_ACNodeImpl, &impl)))
        return Ref<CACNodeImpl>();
    Ref<CACNodeImpl> own = Ref<CACNodeImpl>::Attach(static_cast<CACNodeImpl*>(impl));
    if (static_cast<IACNode*>(own.Get()) != node)
        own.Reset();
    return own;
}

NodePath CACNodeImpl::GetPath() const noexcept {
    const LockGuard guard(Lock);
    return {Above, Name};
}

void CACNodeImpl::GetContent(AttributeTable& attributes, WideString& type) const noexcept {
    const LockGuard guard(Lock);
    attributes = Attributes;
    type = TypeName;
}

bool CACNodeImpl::GetLeafContent(NodeContent& content) const noexcept {
    const LockGuard guard(Lock);
    if (Children.Size() != 0)
        return false;
    content = {{Above, Name}, Attributes, TypeName};
    return true;
}

HRESULT CACNodeImpl::GetName(NodeNameKind kind, WCHAR* buffer, size_t* size) {
    return Boundary([&]() -> HRESULT {
        const LockGuard guard(Lock);
        CheckOutPointer(size);
        switch (kind) {
        case NameShort:
            return CopyTextOut(ShortName(), buffer, size);
        case NameParentPath:
            return CopyTextOut(ParentPathText(Above), buffer, size);
        case NameFullPath:
            return CopyTextOut(FullPathUnderLock(), buffer, size);
        default:
            ThrowHr(E_INVALIDARG);
        }
    });
}

HRESULT CACNodeImpl::GetType(WCHAR* buffer, size_t* size) {
    return Boundary([&] {
        const LockGuard guard(Lock);
        return CopyTextOut(TypeName, buffer, size);
    });
}

HRESULT CACNodeImpl::SetType(const WCHAR* type) {
    return Boundary([&] {
        CheckOutPointer(type);
        WideString text{WideView(type)};
        const LockGuard guard(Lock);
        TypeName = std::move(text);
    });
}

// Expected misses are cheap: they make a record only where the process asked for it.
HRESULT CACNodeImpl::PvtMiss(HRESULT hr, const WCHAR* key, const WCHAR* value) noexcept {
    return IsAdvancedErrorInfoEnabled() ? ReportNodeError(hr, this, key, value) : hr;
}

} // namespace treevault
