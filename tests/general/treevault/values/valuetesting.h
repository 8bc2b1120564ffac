// SPDX-License-Identifier: MIT
// Values and conversions as tests speak of them: payloads as strings of bytes, and the whole
// protocol of a conversion as one expectation.
#ifndef TREEVAULT_TESTS_VALUES_VALUETESTING_H
#define TREEVAULT_TESTS_VALUES_VALUETESTING_H

#include "support/results.h"

#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace treevault::tests {

using Bytes = std::string;

inline constexpr ValueType AllTypes[] = {
    VtEmpty,      VtStringA,     VtStringW,    VtInt32,       VtUInt32,       VtInt64,
    VtUInt64,     VtBool,        VtBinary,     VtGuid,        VtStringAArray, VtStringWArray,
    VtInt32Array, VtUInt32Array, VtInt64Array, VtUInt64Array, VtBoolArray,    VtGuidArray};

inline constexpr HRESULT CannotConvert = TREEVAULT_E_CANNOT_CONVERT;
inline constexpr HRESULT BadShape = TREEVAULT_E_INVALID_DATA;
inline constexpr HRESULT TooSmall = TREEVAULT_E_INSUFFICIENT_BUFFER;

// Payloads.

template <class T>
Bytes Raw(const T& object) {
    return Bytes(reinterpret_cast<const char*>(&object), sizeof object);
}

template <class T>
Bytes List(std::initializer_list<T> elements) {
    Bytes bytes;
    for (const T& element : elements)
        bytes += Raw(element);
    return bytes;
}

inline Bytes I32(int32_t value) {
    return Raw(value);
}
inline Bytes U32(uint32_t value) {
    return Raw(value);
}
inline Bytes I64(int64_t value) {
    return Raw(value);
}
inline Bytes U64(uint64_t value) {
    return Raw(value);
}
inline Bytes Bool(uint8_t value) {
    return Raw(value);
}

// Text with its terminator; wide text is given as ASCII.
inline Bytes A(std::string_view text) {
    return Bytes(text) + '\0';
}
inline Bytes U(std::string_view ascii) {
    Bytes bytes;
    for (const char c : ascii)
        bytes += Raw(static_cast<WCHAR>(c));
    return bytes + Raw(WCHAR(0));
}
inline Bytes Units(std::initializer_list<unsigned> units) {
    Bytes bytes;
    for (const unsigned unit : units)
        bytes += Raw(static_cast<WCHAR>(unit));
    return bytes;
}

// {00112233-4455-6677-8899-AABBCCDDEEFF}
inline constexpr GUID SampleGuid = {
    0x00112233, 0x4455, 0x6677, {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}};
inline constexpr char SampleGuidText[] = "{00112233-4455-6677-8899-AABBCCDDEEFF}";

// A typed value with bytes of its own, which end where the payload ends.
struct Value {
    Value(ValueType type, const Bytes& bytes) : Type(type), Size(bytes.size()) {
        if (Size == 0)
            return;
        Data = std::make_unique<char[]>(bytes.size());
        std::memcpy(Data.get(), bytes.data(), bytes.size());
    }

    ValueType Type;
    std::unique_ptr<char[]> Data; // null for no bytes
    uint64_t Size;
};

inline std::string Describe(const Value& source, ValueType target) {
    std::string text = "from tag " + std::to_string(source.Type) + " " +
                       testing::PrintToString(Bytes(source.Data.get(), source.Size)) + " to tag " +
                       std::to_string(target);
    return text;
}

// Converts into a buffer of `capacity` bytes that ends where they end.
struct Attempt {
    Attempt(const Value& source, ValueType target, uint64_t capacity) : Size(capacity) {
        const auto buffer = std::make_unique<char[]>(capacity);
        std::memset(buffer.get(), '?', capacity);
        Code = AcnConvertData(source.Type, source.Data.get(), source.Size, target, buffer.get(),
                              &Size);
        Buffer.assign(buffer.get(), capacity);
    }

    HRESULT Code;
    uint64_t Size;
    Bytes Buffer;
};

// The conversion gives exactly `expected`: it tells the size, fits, counts, and refuses less,
// writes nothing behind it, and touches no record.
inline void ExpectConverts(const Value& source, ValueType target, const Bytes& expected) {
    SCOPED_TRACE(Describe(source, target));
    const void* data = source.Data.get();
    const uint64_t needed = expected.size();

    uint64_t size = 0;
    EXPECT_TRUE(Returns(needed == 0 ? S_OK : TooSmall, AcnConvertData, source.Type, data,
                        source.Size, target, nullptr, &size));
    EXPECT_EQ(needed, size) << "of the size query";

    size = needed + 1000;
    EXPECT_TRUE(
        Returns(S_OK, AcnConvertData, source.Type, data, source.Size, target, nullptr, &size));
    EXPECT_EQ(needed, size) << "counted without a buffer";

    const Attempt fitting(source, target, needed);
    EXPECT_EQ(CodeText(S_OK), CodeText(fitting.Code));
    EXPECT_EQ(needed, fitting.Size);
    EXPECT_EQ(expected, fitting.Buffer);

    const Attempt ample(source, target, 3 * needed + 1);
    EXPECT_EQ(CodeText(S_OK), CodeText(ample.Code));
    EXPECT_EQ(needed, ample.Size);
    EXPECT_EQ(expected + Bytes(2 * needed + 1, '?'), ample.Buffer) << "with room to spare";

    if (needed != 0) {
        const Attempt small(source, target, needed - 1);
        EXPECT_EQ(CodeText(TooSmall), CodeText(small.Code));
        EXPECT_EQ(needed, small.Size) << "with a byte too few";
    }
}

// The conversion fails with a record and leaves the size alone, whatever the buffer.
inline void ExpectFails(const Value& source, ValueType target, HRESULT code) {
    SCOPED_TRACE(Describe(source, target));
    for (const bool withBuffer : {false, true}) {
        char buffer[256];
        uint64_t size = sizeof buffer;
        EXPECT_TRUE(FailsWithRecord(code, AcnConvertData, source.Type, source.Data.get(),
                                    source.Size, target, withBuffer ? buffer : nullptr, &size));
        EXPECT_EQ(sizeof buffer, size);
    }
}

// What a conversion gives: bytes, or a failure.
struct Outcome {
    Outcome(const Bytes& payload) : Payload(payload) {}
    Outcome(HRESULT code) : Code(code) {}

    HRESULT Code = S_OK;
    Bytes Payload;
};

inline void ExpectOutcome(const Value& source, ValueType target, const Outcome& outcome) {
    if (outcome.Code == S_OK)
        ExpectConverts(source, target, outcome.Payload);
    else
        ExpectFails(source, target, outcome.Code);
}

// One source and what each target makes of it, in the order of the tags.
struct MatrixRow {
    ValueType Type;
    Bytes Payload;
    std::vector<Outcome> Scalars; // 10
    std::vector<Outcome> Arrays;  // 8
};

inline void ExpectRows(const std::vector<MatrixRow>& rows) {
    for (const MatrixRow& row : rows) {
        std::vector<Outcome> outcomes = row.Scalars;
        outcomes.insert(outcomes.end(), row.Arrays.begin(), row.Arrays.end());
        ASSERT_EQ(std::size(AllTypes), outcomes.size()) << "row of tag " << row.Type;
        const Value source(row.Type, row.Payload);
        for (size_t column = 0; column < outcomes.size(); ++column)
            ExpectOutcome(source, AllTypes[column], outcomes[column]);
    }
}

} // namespace treevault::tests

#endif
