/* SPDX-License-Identifier: MIT
 *
 * Typed values: the tags, the layout of each payload, and conversion.
 *
 * A value crosses the interface as three plain arguments: a tag, a pointer to the bytes and their
 * size in bytes, terminators included. The bytes are those of the type in the host's byte order.
 * A value passed in is borrowed for the call; the library copies what it keeps. The numbers of
 * the tags are frozen: they are written into XML text. */
#ifndef TREEVAULT_VALUES_H
#define TREEVAULT_VALUES_H

#include <treevault/platform.h>

typedef uint16_t ValueType;

#ifdef __cplusplus
enum ValueTypeTag : uint16_t {
#else
enum ValueTypeTag {
#endif
    VtEmpty = 0,   /* no payload; size 0 */
    VtStringA = 1, /* narrow characters and a NUL, UTF-8 as far as converted; size at least 1 */
    VtStringW = 2, /* UTF-16 code units and a NUL; size at least 2 */
    VtInt32 = 3,   /* 4 bytes */
    VtUInt32 = 4,  /* 4 bytes */
    VtInt64 = 5,   /* 8 bytes */
    VtUInt64 = 6,  /* 8 bytes */
    VtBool = 7,    /* 1 byte, zero is false and any other value is true */
    VtBinary = 12, /* any bytes; size 0 is the empty binary */
    VtGuid = 13,   /* a GUID in its memory layout; 16 bytes */

    VtArray = 0x100, /* flag: the elements back to back; size 0 is the empty array */
    VtStringAArray = 257,
    VtStringWArray = 258,
    VtInt32Array = 259,
    VtUInt32Array = 260,
    VtInt64Array = 261,
    VtUInt64Array = 262,
    VtBoolArray = 263,
    VtGuidArray = 269
};

TREEVAULT_EXTERN_C_BEGIN

/* Converts a value into another type.
 *
 * `sourceType`, `sourceData`, `sourceSize`  the value; `sourceSize` in bytes.
 * `targetType`    the wanted type.
 * `targetBuffer`  receives the bytes, or null to count only.
 * `targetSize`    in: capacity of `targetBuffer` in bytes; out: bytes that the result needs,
 *                 written on success and with 0x8007007A, untouched by every other failure.
 *
 * Numbers are never range-checked: they are cut, extended or clamped. VtBool to VtUInt32, VtInt64
 * or VtUInt64, and the array forms of these, give 1 for false and 0 for true.
 *
 * Returns 0; a null buffer with a large enough capacity counts only and gives 0 too.
 *   0x8007007A  the result needs more than the capacity; no error record
 *   0x80004003  `targetSize` is null
 *   0x80070057  a size above 0xFFFFFFFF
 *   0x80040203  unsupported source or target tag
 *   0x8007000D  the source bytes don't fit their tag
 *   0x80040204  the text doesn't parse, or there is no way from source to target
 * Each failure but the first sets an error record. The buffer may hold a part of the result after
 * any failure. Any thread may call at any time; nothing is kept. */
HRESULT TREEVAULT_CALL AcnConvertData(ValueType sourceType, const void* sourceData,
                                      uint64_t sourceSize, ValueType targetType, void* targetBuffer,
                                      uint64_t* targetSize);

/* Names kept for modules that link against them. They do no work, whatever is passed: the first
 * two return E_NOTIMPL, the next three 0. */
HRESULT TREEVAULT_CALL VariantData_ConvertType(void* value, ValueType type);
HRESULT TREEVAULT_CALL VariantData_Init(void* value);
HRESULT TREEVAULT_CALL VariantData_GetBuffer(void* value);
HRESULT TREEVAULT_CALL VariantData_GetData(void* value);
HRESULT TREEVAULT_CALL VariantData_GetType(void* value);
void TREEVAULT_CALL VariantData_Cleanup(void* value);

TREEVAULT_EXTERN_C_END

#endif
