// SPDX-License-Identifier: MIT
// What is frozen: identifiers, tags, codes, flags and sizes, as a client compiles them.
#include <treevault/treevault.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace treevault::tests {
namespace {

constexpr bool Is(const GUID& guid, uint32_t a, uint16_t b, uint16_t c, uint64_t d) {
    uint64_t last = 0;
    for (const uint8_t byte : guid.Data4)
        last = last << 8 | byte;
    return guid.Data1 == a && guid.Data2 == b && guid.Data3 == c && last == d;
}

// --- Types ---------------------------------------------------------------------------------------

static_assert(sizeof(WCHAR) == 2);
static_assert(sizeof(HRESULT) == 4 && std::is_signed_v<HRESULT>);
static_assert(sizeof(GUID) == 16 && alignof(GUID) == 4);
static_assert(sizeof(ValueType) == 2 && std::is_unsigned_v<ValueType>);
static_assert(sizeof(NodeNameKind) == 4 && std::is_unsigned_v<NodeNameKind>);

// --- Identifiers ---------------------------------------------------------------------------------

static_assert(Is(IID_IComponentUnknown, 0x51C3FBA2, 0x85FE, 0x436B, 0xA0FF1C61A5C0C585));
static_assert(Is(IID_IACNode, 0xF31ECCC1, 0xDD32, 0x41C6, 0x93434B73D04F4CDB));
static_assert(Is(IID_IWeakRef, 0xB114EFFB, 0x7880, 0x43B8, 0x9A2A40BE1DD57D5E));
static_assert(Is(IID_IWeakRefSource, 0xA85AE290, 0x89EE, 0x46E0, 0x93953AAB22F29105));
static_assert(Is(IID_IComponentsModule, 0x989524A9, 0x625D, 0x48C8, 0xAB037C084EB5265D));
static_assert(Is(IID_INodeSerializer, 0x09AB0740, 0x1C2D, 0x4A6F, 0xA4C1537B0086C046));
static_assert(Is(IID_INodeDeserializer, 0xE67AF07A, 0xC070, 0x4B4C, 0x8AF8A8F0C9D295DF));
static_assert(Is(CLSID_ACNode, 0x241114B3, 0x31FE, 0x400D, 0x8F30AEAB2A58D976));

TEST(Frozen, PlatformInterfacesHaveTheirPublishedIdentifiers) {
    EXPECT_TRUE(Is(IID_IUnknown, 0x00000000, 0x0000, 0x0000, 0xC000000000000046));
    EXPECT_TRUE(Is(IID_IErrorInfo, 0x1CF2B120, 0x547D, 0x101B, 0x8E6508002B2BD119));
    EXPECT_TRUE(Is(IID_ICreateErrorInfo, 0x22F03340, 0x547D, 0x101B, 0x8E6508002B2BD119));
}

// --- Tags ----------------------------------------------------------------------------------------

static_assert(VtEmpty == 0);
static_assert(VtStringA == 1 && VtStringW == 2);
static_assert(VtInt32 == 3 && VtUInt32 == 4 && VtInt64 == 5 && VtUInt64 == 6);
static_assert(VtBool == 7);
static_assert(VtBinary == 12 && VtGuid == 13);
static_assert(VtArray == 0x100);
static_assert(VtStringAArray == 257 && VtStringWArray == 258);
static_assert(VtInt32Array == 259 && VtUInt32Array == 260);
static_assert(VtInt64Array == 261 && VtUInt64Array == 262);
static_assert(VtBoolArray == 263 && VtGuidArray == 269);

// --- Codes ---------------------------------------------------------------------------------------

constexpr bool IsCode(HRESULT code, uint32_t number) {
    return static_cast<uint32_t>(code) == number;
}

static_assert(S_OK == 0 && S_FALSE == 1);
static_assert(IsCode(E_NOTIMPL, 0x80004001));
static_assert(IsCode(E_NOINTERFACE, 0x80004002));
static_assert(IsCode(E_POINTER, 0x80004003));
static_assert(IsCode(E_ABORT, 0x80004004));
static_assert(IsCode(E_FAIL, 0x80004005));
static_assert(IsCode(E_UNEXPECTED, 0x8000FFFF));
static_assert(IsCode(REGDB_E_CLASSNOTREG, 0x80040154));
static_assert(IsCode(E_OUTOFMEMORY, 0x8007000E));
static_assert(IsCode(E_INVALIDARG, 0x80070057));
static_assert(IsCode(TREEVAULT_E_INVALID_NAME, 0x80040201));
static_assert(IsCode(TREEVAULT_E_PARENT_PATH_FIXED, 0x80040202));
static_assert(IsCode(TREEVAULT_E_UNSUPPORTED_TYPE, 0x80040203));
static_assert(IsCode(TREEVAULT_E_CANNOT_CONVERT, 0x80040204));
static_assert(IsCode(TREEVAULT_E_HAS_PARENT, 0x80040205));
static_assert(IsCode(TREEVAULT_E_CHILD_EXISTS, 0x80040206));
static_assert(IsCode(TREEVAULT_E_CONTEXT_FINISHED, 0x80040207));
static_assert(IsCode(TREEVAULT_E_NOT_WELL_FORMED, 0x80040208));
static_assert(IsCode(TREEVAULT_E_NOT_A_NODE_DOCUMENT, 0x80040209));
static_assert(IsCode(TREEVAULT_E_INVALID_DATA, 0x8007000D));
static_assert(IsCode(TREEVAULT_E_INSUFFICIENT_BUFFER, 0x8007007A));
static_assert(IsCode(TREEVAULT_E_NOT_FOUND, 0x80070490));

// --- Kinds, flags and limits ---------------------------------------------------------------------

static_assert(NameShort == 0 && NameParentPath == 1 && NameFullPath == 2);
static_assert(CloneOwnAttributes == 1);
static_assert(TREEVAULT_ALL_LEVELS == 0x7FFFFFFF && sizeof(TREEVAULT_ALL_LEVELS) == 8);
static_assert(ErrorTextWithoutCode == 1 && ErrorTextWithoutText == 2 &&
              ErrorTextWithoutDetails == 4);
static_assert(TREEVAULT_FORMAT_XML == 1);
static_assert(NodeSerializerFlagFullPath == 0x1 && NodeSerializerFlagIndent == 0x100 &&
              NodeSerializerFlagNoValueTypes == 0x200 && NodeSerializerFlagBom == 0x400 &&
              NodeDeserializerFlagStrict == 0x400);
static_assert(TREEVAULT_MAX_XML_DEPTH >= 10000);

// --- Signatures ----------------------------------------------------------------------------------

template <class Wanted, class Function>
constexpr bool HasType(Function*) {
    return std::is_same_v<Wanted, Function>;
}

using NodeCall = HRESULT TREEVAULT_CALL(IACNode*, IACNode*);

static_assert(HasType<HRESULT TREEVAULT_CALL(void*, IErrorInfo**)>(&EhGetErrorContext));
static_assert(HasType<void TREEVAULT_CALL(IErrorInfo*)>(&EhReleaseErrorContext));
static_assert(HasType<HRESULT TREEVAULT_CALL(HRESULT, uint32_t, IErrorInfo*, const WCHAR*, WCHAR*,
                                             size_t*)>(&EhMakeErrorText));
static_assert(HasType<HRESULT TREEVAULT_CALL(IComponentsModule**)>(&GetComponentsModuleObject));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(const WCHAR*, const WCHAR*, IACNode**)>(&AcnCreateNode));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(IACNode*, uint64_t, uint32_t, IACNode**)>(&AcnCloneNode));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, IACNode**)>(&AcnDuplicateNodeHandle));
static_assert(HasType<void TREEVAULT_CALL(IACNode*)>(&AcnCloseNodeHandle));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(IACNode*, NodeNameKind, WCHAR*, size_t*)>(&AcnGetNodeName));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(IACNode*, NodeNameKind, const WCHAR*)>(&AcnSetNodeName));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, WCHAR*, size_t*)>(&AcnGetNodeType));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, const WCHAR*)>(&AcnSetNodeType));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, const WCHAR*, ValueType, const void*,
                                             size_t)>(&AcnSetAttribute));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, const WCHAR*)>(&AcnDeleteAttribute));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, const WCHAR*, const ValueType*, void*,
                                             size_t*, ValueType*)>(&AcnGetAttribute));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, WCHAR*, size_t*)>(&AcnGetAttributeNames));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(IACNode*, const WCHAR*, uint32_t)>(&AcnSetModifiedState));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(IACNode*, const WCHAR*, uint32_t*)>(&AcnGetModifiedState));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(IACNode*, WCHAR*, size_t*)>(&AcnGetModifiedAttributeNames));
static_assert(HasType<NodeCall>(&AcnAddChild) && HasType<NodeCall>(&AcnRemoveChild));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, uint64_t)>(&AcnRemoveChildByIndex));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, size_t*)>(&AcnGetChildCount));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, uint64_t, IACNode**)>(&AcnGetChildByIndex));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(IACNode*, const WCHAR*, IACNode**)>(&AcnGetChildByName));
static_assert(HasType<HRESULT TREEVAULT_CALL(IACNode*, IACNode**)>(&AcnGetParent));
static_assert(HasType<HRESULT TREEVAULT_CALL(uint32_t, uint32_t, NodeTextWriteCallback, void*,
                                             INodeSerializer**)>(&AcnStartSerialization));
static_assert(HasType<HRESULT TREEVAULT_CALL(INodeSerializer*, IACNode**, uint64_t, uint64_t)>(
    &AcnSerializeNodes));
static_assert(HasType<HRESULT TREEVAULT_CALL(INodeSerializer*)>(&AcnFinalizeSerialization));
static_assert(HasType<void TREEVAULT_CALL(INodeSerializer*)>(&AcnCloseSerializationContext));
static_assert(HasType<HRESULT TREEVAULT_CALL(uint32_t, uint32_t, NodeTextReadCallback, void*,
                                             INodeDeserializer**)>(&AcnStartDeserialization));
static_assert(HasType<HRESULT TREEVAULT_CALL(INodeDeserializer*, IACNode**, uint64_t, uint64_t*)>(
    &AcnDeserializeNodes));
static_assert(HasType<void TREEVAULT_CALL(INodeDeserializer*)>(&AcnCloseDeserializationContext));
static_assert(HasType<HRESULT TREEVAULT_CALL(ValueType, const void*, uint64_t, ValueType, void*,
                                             uint64_t*)>(&AcnConvertData));
static_assert(
    HasType<HRESULT TREEVAULT_CALL(const char*, uint64_t, void*)>(NodeTextWriteCallback(nullptr)));
static_assert(HasType<HRESULT TREEVAULT_CALL(const char**, uint64_t*, uint32_t*, void*)>(
    NodeTextReadCallback(nullptr)));

} // namespace
} // namespace treevault::tests
