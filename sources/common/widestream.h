// SPDX-License-Identifier: MIT
// A stream of wide text for log lines and error texts.
#ifndef TREEVAULT_COMMON_WIDESTREAM_H
#define TREEVAULT_COMMON_WIDESTREAM_H

#include "platform/widetext.h"

#include <concepts>
#include <cstdint>

namespace treevault {

class WideStream {
public:
    // A null text is written as "(null)".
    WideStream& operator<<(const WCHAR* text) {
        Text.append(text ? WideView(text) : WideView(TV_W("(null)")));
        return *this;
    }
    WideStream& operator<<(WideView text) {
        Text.append(text);
        return *this;
    }
    WideStream& operator<<(const WideText& text) { return *this << WideView(text); }
    WideStream& operator<<(WCHAR unit) {
        Text.push_back(unit);
        return *this;
    }

    // Numbers are written in decimal.
    template <std::integral Number>
    requires(!std::same_as<Number, WCHAR> && !std::same_as<Number, bool>) WideStream&
    operator<<(Number number) {
        if constexpr (std::signed_integral<Number>)
            return AppendSigned(number);
        else
            return AppendUnsigned(number);
    }

    // Upper-case hexadecimal, filled up with zeros to `digits`.
    WideStream& Hex(uint64_t number, unsigned digits);

    // "0x" and 16 upper-case hexadecimal digits.
    WideStream& Address(const void* address) {
        *this << TV_W("0x");
        return Hex(reinterpret_cast<uintptr_t>(address), 16);
    }

    WideText& Str() noexcept { return Text; }
    const WideText& Str() const noexcept { return Text; }

private:
    WideStream& AppendSigned(int64_t number);
    WideStream& AppendUnsigned(uint64_t number);

    WideText Text;
};

} // namespace treevault

#endif
