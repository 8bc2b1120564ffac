// SPDX-License-Identifier: MIT
// Digits of the wide text stream.
#include "common/widestream.h"

#include <iterator>

namespace treevault {

WideStream& WideStream::AppendSigned(int64_t number) {
    if (number >= 0)
        return AppendUnsigned(static_cast<uint64_t>(number), 10, 1);
    *this << TV_W('-');
    return AppendUnsigned(0 - static_cast<uint64_t>(number), 10, 1);
}

WideStream& WideStream::AppendUnsigned(uint64_t number, unsigned base, unsigned digits) {
    WCHAR buffer[20];
    WCHAR* const end = std::end(buffer);
    WCHAR* at = end;
    do {
        *--at = TV_W("0123456789ABCDEF")[number % base];
        number /= base;
    } while (number != 0);
    const size_t length = static_cast<size_t>(end - at);
    if (length < digits)
        Text.append(digits - length, TV_W('0'));
    Text.append(at, length);
    return *this;
}

} // namespace treevault
