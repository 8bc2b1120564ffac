// SPDX-License-Identifier: MIT
// Digits of the wide text stream.
#include "common/widestream.h"

#include <iterator>

namespace treevault {

namespace {

// The base is known where this is compiled, so that nothing is divided.
template <unsigned Base>
void AppendDigits(WideText& text, uint64_t number, size_t least) {
    WCHAR buffer[20];
    WCHAR* const end = std::end(buffer);
    WCHAR* at = end;
    do {
        *--at = TV_W("0123456789ABCDEF")[number % Base];
        number /= Base;
    } while (number != 0);
    const size_t length = static_cast<size_t>(end - at);
    if (length < least)
        text.append(least - length, TV_W('0'));
    text.append(at, length);
}

} // namespace

WideStream& WideStream::AppendSigned(int64_t number) {
    if (number >= 0)
        return AppendUnsigned(static_cast<uint64_t>(number));
    *this << TV_W('-');
    return AppendUnsigned(0 - static_cast<uint64_t>(number));
}

WideStream& WideStream::AppendUnsigned(uint64_t number) {
    AppendDigits<10>(Text, number, 1);
    return *this;
}

WideStream& WideStream::Hex(uint64_t number, unsigned digits) {
    AppendDigits<16>(Text, number, digits);
    return *this;
}

} // namespace treevault
