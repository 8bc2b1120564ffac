// SPDX-License-Identifier: MIT
// Random values converted there and back. The seed is printed and may be given as
// TREEVAULT_TEST_SEED, the number of values as TREEVAULT_TEST_STEPS.
#include "general/treevault/values/valuetesting.h"

#include <cstdlib>
#include <random>

namespace treevault::tests {
namespace {

uint64_t FromEnvironment(const char* name, uint64_t otherwise) {
    const char* const text = std::getenv(name);
    return text && *text ? std::strtoull(text, nullptr, 0) : otherwise;
}

Bytes Convert(ValueType source, const Bytes& payload, ValueType target) {
    char buffer[4096];
    uint64_t size = sizeof buffer;
    const HRESULT hr =
        AcnConvertData(source, payload.data(), payload.size(), target, buffer, &size);
    EXPECT_EQ(CodeText(S_OK), CodeText(hr)) << source << " to " << target;
    return SUCCEEDED(hr) ? Bytes(buffer, size) : Bytes();
}

class RoundTrip : public testing::Test {
protected:
    void SetUp() override {
        const uint64_t seed = FromEnvironment("TREEVAULT_TEST_SEED", std::random_device()());
        std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
        RecordProperty("seed", std::to_string(seed));
        Random.seed(seed);
        Steps = FromEnvironment("TREEVAULT_TEST_STEPS", 5000);
    }

    // Short numbers are as likely as long ones.
    Bytes RandomBytes(size_t size) {
        Bytes bytes;
        for (size_t at = 0; at < size; ++at)
            bytes += static_cast<char>(Random());
        if (Random() % 2)
            std::fill(bytes.begin() + static_cast<ptrdiff_t>(Random() % (size + 1)), bytes.end(),
                      Random() % 2 ? '\0' : '\xFF');
        return bytes;
    }

    void ExpectSame(ValueType type, const Bytes& payload, ValueType through) {
        EXPECT_EQ(payload, Convert(through, Convert(type, payload, through), type))
            << testing::PrintToString(payload) << " of tag " << type << " through " << through;
    }

    std::mt19937_64 Random;
    uint64_t Steps = 0;
};

struct Kind {
    ValueType Type;
    size_t Size;
};
const Kind numbers[] = {{VtInt32, 4}, {VtUInt32, 4}, {VtInt64, 8}, {VtUInt64, 8}};

TEST_F(RoundTrip, ScalarsThroughText) {
    for (uint64_t step = 0; step < Steps && !HasFailure(); ++step) {
        for (const ValueType text : {VtStringA, VtStringW}) {
            for (const Kind& kind : numbers)
                ExpectSame(kind.Type, RandomBytes(kind.Size), text);
            ExpectSame(VtGuid, RandomBytes(16), text);
            ExpectSame(VtBool, Bool(Random() % 2), text);
            ExpectSame(VtBinary, RandomBytes(Random() % 200), text);
        }
    }
}

TEST_F(RoundTrip, ArraysThroughText) {
    for (uint64_t step = 0; step < Steps && !HasFailure(); ++step) {
        const size_t count = Random() % 6;
        for (const ValueType text : {VtStringAArray, VtStringWArray}) {
            for (const Kind& kind : numbers)
                ExpectSame(kind.Type | VtArray, RandomBytes(kind.Size * count), text);
            ExpectSame(VtGuidArray, RandomBytes(16 * count), text);
        }
    }
}

TEST_F(RoundTrip, NumbersThroughOthersOfTheirWidthOrMore) {
    for (uint64_t step = 0; step < Steps && !HasFailure(); ++step) {
        const Bytes narrow = RandomBytes(4), wide = RandomBytes(8);
        for (const ValueType through : {VtInt32, VtUInt32, VtInt64, VtUInt64}) {
            ExpectSame(VtInt32, narrow, through);
            ExpectSame(VtUInt32, narrow, through);
        }
        for (const ValueType through : {VtInt64, VtUInt64}) {
            ExpectSame(VtInt64, wide, through);
            ExpectSame(VtUInt64, wide, through);
        }
    }
}

TEST_F(RoundTrip, TextThroughTheOtherEncoding) {
    for (uint64_t step = 0; step < Steps && !HasFailure(); ++step) {
        Bytes wide;
        for (uint64_t left = Random() % 150; left != 0; --left) {
            const uint32_t point =
                static_cast<uint32_t>(Random() % (Random() % 2 ? 0x80 : 0x110000));
            if (point >= 0x10000)
                wide += Units({0xD800 + ((point - 0x10000) >> 10), 0xDC00 + (point & 0x3FF)});
            else if (point < 0xD800 || point > 0xDFFF)
                wide += Units({point});
        }
        ExpectSame(VtStringW, wide + Units({0}), VtStringA);
        ExpectSame(VtStringWArray, wide + Units({0}), VtStringAArray);
    }
}

TEST_F(RoundTrip, ABooleanIsInvertedByAllNumbersButOne) {
    for (const uint8_t value : {uint8_t{0}, uint8_t{1}}) {
        ExpectSame(VtBool, Bool(value), VtInt32);
        for (const ValueType through : {VtUInt32, VtInt64, VtUInt64})
            EXPECT_EQ(Bool(!value),
                      Convert(through, Convert(VtBool, Bool(value), through), VtBool));
    }
    for (const ValueType text : {VtStringA, VtStringW})
        EXPECT_EQ(Bool(1), Convert(text, Convert(VtBool, Bool(0x80), text), VtBool));
}

} // namespace
} // namespace treevault::tests
