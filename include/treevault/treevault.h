/* SPDX-License-Identifier: MIT
 *
 * The flat interface of TreeVault. It compiles as C11 and as C++17.
 *
 * Conventions, which hold wherever a contract does not say otherwise:
 *
 *  1. Text is UTF-16, zero-terminated, in WCHAR (wchar_t on Windows, char16_t elsewhere). Names,
 *     paths and attribute names compare by code unit and case-sensitively. A path is written with
 *     "\" on every platform. Narrow text (VtStringA, XML) is UTF-8.
 *  2. Sizes of text count characters with the terminator, sizes of values count bytes. Counts,
 *     indexes and depths are 64 bits.
 *  3. Text out: the caller passes a buffer and in `*size` its capacity. `*size` always receives
 *     the size needed; the text is copied only if it fits, otherwise nothing is copied and the
 *     result is 0x8007007A, without an error record. A null buffer asks for the size and gives 0.
 *  4. A null handle gives E_POINTER without an error record, and nothing else is looked at. Other
 *     null arguments are as each contract says. On failure an out argument is untouched.
 *  5. Every handle that a function gives out owns one reference and is given back with the closing
 *     function of its kind, once.
 *  6. Results are HRESULTs; negative means failure. Most failures set an error record on the
 *     calling thread, see errors.h; expected misses (0x80070490, 0x8007007A) do not. The setting
 *     `EnableAdvancedErrorInfo` of section "Debug" makes misses of nodes set one too.
 *  7. Functions may be called from any thread at any time, contexts from one thread at a time. The
 *     library starts no thread.
 *  8. When memory runs out, a failure is 0x8007000E where the contract says so; otherwise
 *     std::bad_alloc leaves the function, the only exception that ever does.
 *  9. Functions, operations and callbacks have the calling convention TREEVAULT_CALL. A callback
 *     must not throw.
 * 10. Frozen: identifiers, the order of operations, tags and codes. */
#ifndef TREEVAULT_TREEVAULT_H
#define TREEVAULT_TREEVAULT_H

#include <treevault/components.h>
#include <treevault/errors.h>
#include <treevault/nodes.h>
#include <treevault/platform.h>
#include <treevault/serialization.h>
#include <treevault/storage.h>
#include <treevault/values.h>

#endif
