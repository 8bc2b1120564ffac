/* SPDX-License-Identifier: MIT
 *
 * The result codes of the library and the functions that read the error record.
 *
 * A failing function returns a negative HRESULT. Where its contract says so it also leaves an
 * error record on the calling thread; the next failure that sets one replaces it, and no success
 * ever clears it. The codes are frozen. */
#ifndef TREEVAULT_ERRORS_H
#define TREEVAULT_ERRORS_H

#include <treevault/platform.h>

/* The library's own codes. */
#define TREEVAULT_E_INVALID_NAME ((HRESULT)0x80040201)        /* invalid name or path */
#define TREEVAULT_E_PARENT_PATH_FIXED ((HRESULT)0x80040202)   /* path follows from the parent */
#define TREEVAULT_E_UNSUPPORTED_TYPE ((HRESULT)0x80040203)    /* unsupported value type tag */
#define TREEVAULT_E_CANNOT_CONVERT ((HRESULT)0x80040204)      /* a value cannot be converted */
#define TREEVAULT_E_HAS_PARENT ((HRESULT)0x80040205)          /* child already has a parent */
#define TREEVAULT_E_CHILD_EXISTS ((HRESULT)0x80040206)        /* a child of that name exists */
#define TREEVAULT_E_CONTEXT_FINISHED ((HRESULT)0x80040207)    /* context already finished */
#define TREEVAULT_E_NOT_WELL_FORMED ((HRESULT)0x80040208)     /* XML text not well-formed */
#define TREEVAULT_E_NOT_A_NODE_DOCUMENT ((HRESULT)0x80040209) /* XML of another structure */
#define TREEVAULT_E_STG_NAME_IN_USE ((HRESULT)0x80040301)     /* storage name in use */
#define TREEVAULT_E_STG_PARENT_MISSING ((HRESULT)0x80040303)  /* parent missing */
#define TREEVAULT_E_STG_BAD_PATH ((HRESULT)0x80040304)        /* bad path */
#define TREEVAULT_E_STG_BAD_FILTER ((HRESULT)0x80040305)      /* bad filter type */

/* Codes of the platform that have no name as an HRESULT there. */
#define TREEVAULT_E_INVALID_DATA ((HRESULT)0x8007000D)        /* bytes that don't fit their tag */
#define TREEVAULT_E_INSUFFICIENT_BUFFER ((HRESULT)0x8007007A) /* the needed size was reported */
#define TREEVAULT_E_NOT_FOUND ((HRESULT)0x80070490)           /* the thing does not exist */

/* Bits of EhMakeErrorText's `flags`; higher bits are ignored. */
enum { ErrorTextWithoutCode = 1, ErrorTextWithoutText = 2, ErrorTextWithoutDetails = 4 };

TREEVAULT_EXTERN_C_BEGIN

/* Takes the pending error record of the calling thread.
 * `reserved` is ignored. `*context` receives the record, and the caller owns one reference, to be
 * given back with EhReleaseErrorContext.
 * Returns 0; S_FALSE and a null `*context` when no record is pending; E_INVALIDARG for a null
 * `context`. */
HRESULT TREEVAULT_CALL EhGetErrorContext(void* reserved, IErrorInfo** context);

/* Gives a record back. Null does nothing. */
void TREEVAULT_CALL EhReleaseErrorContext(IErrorInfo* context);

/* Forms the text of an error: "0x%08X " and the code, then the message, then " [details]".
 *
 * `code`     the result that a function returned.
 * `flags`    which parts to leave out, see above.
 * `context`  a record of EhGetErrorContext, or null. It is only read. A record of the library that
 *            speaks of another code is ignored.
 * `text`     a text in the form that this function writes, or null; used when `context` gives
 *            nothing. A text that does not begin with a number counts as nothing.
 * `buffer`   receives the text with its terminator if that fits, or null to ask for the size.
 * `size`     in: capacity of `buffer` in characters; out: characters needed, with the terminator.
 *
 * Returns 0; 0x8007007A when the buffer is too small (`*size` is set, nothing else is written);
 * E_POINTER for a null `size`. Sets no error record and takes none. */
HRESULT TREEVAULT_CALL EhMakeErrorText(HRESULT code, uint32_t flags, IErrorInfo* context,
                                       const WCHAR* text, WCHAR* buffer, size_t* size);

TREEVAULT_EXTERN_C_END

#endif
