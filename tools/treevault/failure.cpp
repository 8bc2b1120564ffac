// SPDX-License-Identifier: MIT
#include "failure.h"

#include "handles.h"
#include "widetext.h"

#include <cstdio>
#include <new>

namespace treevault::program {

std::string Explanation(HRESULT code) {
    switch (code) {
    case TREEVAULT_E_INVALID_NAME:
        return "invalid name or path";
    case TREEVAULT_E_PARENT_PATH_FIXED:
        return "the parent path of a child cannot change";
    case TREEVAULT_E_UNSUPPORTED_TYPE:
        return "unsupported value type";
    case TREEVAULT_E_CANNOT_CONVERT:
        return "a value cannot be converted";
    case TREEVAULT_E_HAS_PARENT:
        return "the child already has a parent";
    case TREEVAULT_E_CHILD_EXISTS:
        return "a child of that name exists";
    case TREEVAULT_E_CONTEXT_FINISHED:
        return "the context is finished";
    case TREEVAULT_E_NOT_WELL_FORMED:
        return "not well-formed XML";
    case TREEVAULT_E_NOT_A_NODE_DOCUMENT:
        return "not the structure of a node document";
    case TREEVAULT_E_STG_NAME_IN_USE:
        return "the name of the storage is in use";
    case TREEVAULT_E_STG_PARENT_MISSING:
        return "a parent is missing";
    case TREEVAULT_E_STG_BAD_PATH:
        return "no path of a node";
    case TREEVAULT_E_STG_BAD_FILTER:
        return "unknown type of filter";
    default:
        return {};
    }
}

std::string ErrorText(HRESULT code) {
    ErrorHandle record;
    EhGetErrorContext(nullptr, record.Receive());
    // The details are addresses, which mean nothing to who uses the program.
    constexpr uint32_t flags = ErrorTextWithoutDetails;
    size_t size = 0;
    HRESULT result = EhMakeErrorText(code, flags, record.Get(), nullptr, nullptr, &size);
    WideText text(size, WCHAR());
    if (SUCCEEDED(result))
        result = EhMakeErrorText(code, flags, record.Get(), nullptr, text.data(), &size);
    if (FAILED(result) || size == 0)
        throw std::bad_alloc();
    text.resize(size - 1);
    return ToUtf8(text);
}

void Check(HRESULT code, const std::string& what) {
    if (SUCCEEDED(code))
        return;
    const std::string explanation = Explanation(code);
    throw DataFailure(what + ": " + explanation + (explanation.empty() ? "" : ": ") +
                      ErrorText(code));
}

} // namespace treevault::program
