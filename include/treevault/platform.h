/* SPDX-License-Identifier: MIT
 *
 * The platform types of the interface: results, identifiers, wide text and the error record.
 *
 * On Windows they are the system's own. Elsewhere this header declares them with the same
 * layouts, and the library exports the functions, so that a client or a sink can read and set
 * error records there too. Everything here may be used from any thread; the slot that holds the
 * pending error record is one per thread. */
#ifndef TREEVAULT_PLATFORM_H
#define TREEVAULT_PLATFORM_H

#include <stddef.h>
#include <stdint.h>

#ifdef _WIN32

#include <windows.h>

#include <oaidl.h>
#include <oleauto.h>

/* Calling convention of every exported function, interface operation and callback. */
#define TREEVAULT_CALL __stdcall

/* A literal of wide text: TREEVAULT_WIDE("name") is a `const WCHAR*`. */
#define TREEVAULT_WIDE_LITERAL(text) L##text

#else

#ifndef __cplusplus
#include <uchar.h>
#endif

#define TREEVAULT_CALL
#define TREEVAULT_WIDE_LITERAL(text) u##text

typedef int32_t HRESULT; /* negative means failure */
typedef char16_t WCHAR;  /* one UTF-16 code unit */
typedef WCHAR OLECHAR;
typedef OLECHAR* LPOLESTR;
typedef OLECHAR* BSTR; /* text with its length kept in front, see SysAllocString */
typedef uint32_t DWORD;
typedef uint32_t ULONG;

typedef struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;

#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001)
#define E_NOINTERFACE ((HRESULT)0x80004002)
#define E_POINTER ((HRESULT)0x80004003)
#define E_ABORT ((HRESULT)0x80004004)
#define E_FAIL ((HRESULT)0x80004005)
#define E_UNEXPECTED ((HRESULT)0x8000FFFF)
#define E_OUTOFMEMORY ((HRESULT)0x8007000E)
#define E_INVALIDARG ((HRESULT)0x80070057)
#define REGDB_E_CLASSNOTREG ((HRESULT)0x80040154)
#define SUCCEEDED(result) (((HRESULT)(result)) >= 0)
#define FAILED(result) (((HRESULT)(result)) < 0)

#ifdef __cplusplus

/* The base of the error record interfaces. Its operations stand in the platform's order, which
 * differs from that of IComponentUnknown. */
struct IUnknown {
    virtual HRESULT QueryInterface(const GUID& iid, void** out) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    ~IUnknown() = default;
};

/* Reading side of an error record. Each BSTR handed out belongs to the caller, who gives it back
 * with SysFreeString; a text that was never set is null. E_POINTER for a null out. */
struct IErrorInfo : IUnknown {
    virtual HRESULT GetGUID(GUID* guid) = 0;
    virtual HRESULT GetSource(BSTR* source) = 0;
    virtual HRESULT GetDescription(BSTR* description) = 0;
    virtual HRESULT GetHelpFile(BSTR* helpFile) = 0;
    virtual HRESULT GetHelpContext(DWORD* helpContext) = 0;

protected:
    ~IErrorInfo() = default;
};

/* Writing side of an error record. Texts are copied; null clears. E_OUTOFMEMORY when a copy
 * fails, the old text then stays. */
struct ICreateErrorInfo : IUnknown {
    virtual HRESULT SetGUID(const GUID& guid) = 0;
    virtual HRESULT SetSource(LPOLESTR source) = 0;
    virtual HRESULT SetDescription(LPOLESTR description) = 0;
    virtual HRESULT SetHelpFile(LPOLESTR helpFile) = 0;
    virtual HRESULT SetHelpContext(DWORD helpContext) = 0;

protected:
    ~ICreateErrorInfo() = default;
};

inline constexpr GUID IID_IUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr GUID IID_IErrorInfo = {
    0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr GUID IID_ICreateErrorInfo = {
    0x22F03340, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};

extern "C" {
#else
typedef struct IErrorInfo IErrorInfo;
typedef struct ICreateErrorInfo ICreateErrorInfo;
#endif

/* Moves the pending record of this thread to the caller, who owns one reference. S_FALSE and a
 * null out when there is none. E_INVALIDARG when `reserved` is not 0 or `record` is null. */
HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** record);

/* Makes `record` the pending record of this thread, with a reference of its own; the former one
 * is released. Null clears. E_INVALIDARG when `reserved` is not 0. */
HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* record);

/* Gives a new empty record with one reference. E_INVALIDARG for null, E_OUTOFMEMORY. */
HRESULT CreateErrorInfo(ICreateErrorInfo** record);

/* Copies text into a BSTR: zero-terminated for the first, `length` code units and a terminator for
 * the second (a null `text` leaves the units unset). Null when `text` of the first is null or
 * when memory runs out. Given back with SysFreeString. */
BSTR SysAllocString(const OLECHAR* text);
BSTR SysAllocStringLen(const OLECHAR* text, unsigned int length);

/* Length in code units without the terminator; 0 for null. */
unsigned int SysStringLen(BSTR text);

/* Null does nothing. */
void SysFreeString(BSTR text);

#ifdef __cplusplus
}
#endif

#endif /* _WIN32 */

#define TREEVAULT_WIDE(text) TREEVAULT_WIDE_LITERAL(text)

#ifdef __cplusplus
#define TREEVAULT_EXTERN_C_BEGIN extern "C" {
#define TREEVAULT_EXTERN_C_END }
#define TREEVAULT_CONSTANT_GUID inline constexpr GUID
#else
#define TREEVAULT_EXTERN_C_BEGIN
#define TREEVAULT_EXTERN_C_END
#define TREEVAULT_CONSTANT_GUID static const GUID
#endif

#endif
