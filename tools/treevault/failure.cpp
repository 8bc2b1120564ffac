// SPDX-License-Identifier: MIT
#include "failure.h"

#include "handles.h"
#include "widetext.h"

#include <cstdio>
#include <new>

namespace treevault::program {

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
    throw DataFailure(what + ": " + ErrorText(code));
}

} // namespace treevault::program
