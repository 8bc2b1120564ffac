// SPDX-License-Identifier: MIT
// EhMakeErrorText as a client sees it.
#include "support/errorrecords.h"
#include "support/results.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace treevault::tests {
namespace {

constexpr HRESULT Code = CodeWithoutMessage; // 2147807523
const Text NoMessage = TREEVAULT_WIDE("0x8004F123 <no description>");

// The text, by the two calls of a client: one for the size, one for the text.
Text ErrorText(HRESULT code, uint32_t flags = 0, IErrorInfo* context = nullptr,
               const WCHAR* text = nullptr) {
    size_t size = 777;
    EXPECT_EQ(S_OK, EhMakeErrorText(code, flags, context, text, nullptr, &size));
    Text buffer(size, TREEVAULT_WIDE('?'));
    const size_t needed = size;
    EXPECT_EQ(S_OK, EhMakeErrorText(code, flags, context, text, buffer.data(), &size));
    EXPECT_EQ(needed, size);
    EXPECT_EQ(needed, Text(buffer.c_str()).size() + 1);
    buffer.pop_back();
    return buffer;
}

// --- Sizes ---------------------------------------------------------------------------------------

// "0x80004005 Boom" has 15 characters.
class ErrorTextSize : public testing::Test {
protected:
    HRESULT Make(WCHAR* buffer, size_t* size, uint32_t flags = 0) {
        return EhMakeErrorText(E_FAIL, flags, Boom.Get(), nullptr, buffer, size);
    }

    Record Boom = MakeForeignRecord(TREEVAULT_WIDE("Boom"));
    WCHAR Buffer[32] = {};
};

TEST_F(ErrorTextSize, IsAskedForWithoutABuffer) {
    for (size_t capacity : {size_t{0}, size_t{5}, size_t{1000}}) {
        size_t size = capacity;
        EXPECT_EQ(S_OK, Make(nullptr, &size));
        EXPECT_EQ(16u, size);
    }
}

TEST_F(ErrorTextSize, MayBeExactlyTheBuffers) {
    Buffer[16] = TREEVAULT_WIDE('#');
    size_t size = 16;
    EXPECT_EQ(S_OK, Make(Buffer, &size));
    EXPECT_EQ(16u, size);
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x80004005 Boom")), Text(Buffer));
    EXPECT_EQ(TREEVAULT_WIDE('#'), Buffer[16]);
}

TEST_F(ErrorTextSize, IsReportedWhenTheBufferIsTooSmall) {
    for (size_t capacity = 0; capacity < 16; ++capacity) {
        std::fill(std::begin(Buffer), std::end(Buffer), TREEVAULT_WIDE('#'));
        size_t size = capacity;
        EXPECT_EQ(static_cast<HRESULT>(0x8007007A), Make(Buffer, &size));
        EXPECT_EQ(16u, size);
        for (const WCHAR unit : Buffer)
            ASSERT_EQ(TREEVAULT_WIDE('#'), unit);
    }
}

TEST_F(ErrorTextSize, MayBeLessThanTheBuffers) {
    size_t size = 32;
    EXPECT_EQ(S_OK, Make(Buffer, &size));
    EXPECT_EQ(16u, size);
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x80004005 Boom")), Text(Buffer));
}

TEST_F(ErrorTextSize, IsOneForTheEmptyText) {
    size_t size = 0;
    EXPECT_EQ(S_OK, Make(nullptr, &size, 7));
    EXPECT_EQ(1u, size);
    Buffer[0] = TREEVAULT_WIDE('#');
    EXPECT_EQ(S_OK, Make(Buffer, &size, 7));
    EXPECT_EQ(WCHAR(0), Buffer[0]);
    size = 0;
    EXPECT_EQ(static_cast<HRESULT>(0x8007007A), Make(Buffer, &size, 7));
    EXPECT_EQ(1u, size);
}

TEST_F(ErrorTextSize, MustNotBeNull) {
    Buffer[0] = TREEVAULT_WIDE('#');
    EXPECT_EQ(static_cast<HRESULT>(0x80004003), Make(Buffer, nullptr));
    EXPECT_EQ(static_cast<HRESULT>(0x80004003), Make(nullptr, nullptr));
    EXPECT_EQ(TREEVAULT_WIDE('#'), Buffer[0]);
}

// --- The thread's record -------------------------------------------------------------------------

TEST(ErrorTextRecord, IsLeftAloneByEveryResult) {
    const auto call = [](size_t capacity, bool withBuffer, bool withSize) {
        WCHAR unit[1] = {};
        size_t size = capacity;
        return EhMakeErrorText(E_FAIL, 0, nullptr, nullptr, withBuffer ? unit : nullptr,
                               withSize ? &size : nullptr);
    };
    const auto leavesRecordAlone = [&](HRESULT wanted, bool withBuffer, bool withSize) {
        const PendingMarker marker;
        EXPECT_EQ(wanted, call(1, withBuffer, withSize));
        EXPECT_TRUE(marker.IsStillPending());
        ClearPending();
        EXPECT_EQ(wanted, call(1, withBuffer, withSize));
        EXPECT_FALSE(TakePending());
    };
    leavesRecordAlone(static_cast<HRESULT>(0x80004003), true, false);
    leavesRecordAlone(S_OK, false, true);
    leavesRecordAlone(static_cast<HRESULT>(0x8007007A), true, true);
}

TEST(ErrorTextRecord, IsOnlyRead) {
    CountedRecord record;
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x80004005 counted")), ErrorText(E_FAIL, 0, &record));
    EXPECT_EQ(1u, record.References);
}

// --- Parts ---------------------------------------------------------------------------------------

TEST(ErrorTextFlags, LeavePartsOut) {
    const WCHAR* const text = TREEVAULT_WIDE("0x8004F123 T [D]");
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 T [D]")), ErrorText(Code, 0, nullptr, text));
    EXPECT_EQ(Text(TREEVAULT_WIDE("T [D]")), ErrorText(Code, 1, nullptr, text));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123  [D]")), ErrorText(Code, 2, nullptr, text));
    EXPECT_EQ(Text(TREEVAULT_WIDE(" [D]")), ErrorText(Code, 3, nullptr, text));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 T")), ErrorText(Code, 4, nullptr, text));
    EXPECT_EQ(Text(TREEVAULT_WIDE("T")), ErrorText(Code, 5, nullptr, text));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123")), ErrorText(Code, 6, nullptr, text));
    EXPECT_EQ(Text(), ErrorText(Code, 7, nullptr, text));
}

TEST(ErrorTextFlags, AboveTheThirdAreIgnored) {
    const WCHAR* const text = TREEVAULT_WIDE("0x8004F123 T [D]");
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 T [D]")), ErrorText(Code, 0xFFFFFFF8, nullptr, text));
    EXPECT_EQ(Text(TREEVAULT_WIDE("T")), ErrorText(Code, 0x8000000D, nullptr, text));
    EXPECT_EQ(Text(), ErrorText(Code, 0xFFFFFFFF, nullptr, text));
}

TEST(ErrorTextFlags, HaveNames) {
    EXPECT_EQ(1, ErrorTextWithoutCode);
    EXPECT_EQ(2, ErrorTextWithoutText);
    EXPECT_EQ(4, ErrorTextWithoutDetails);
}

// --- Decoding ------------------------------------------------------------------------------------

TEST(ErrorTextOfACode, IsItsMessage) {
    EXPECT_EQ(NoMessage, ErrorText(Code));
    EXPECT_EQ(Text(TREEVAULT_WIDE("<no description>")), ErrorText(Code, ErrorTextWithoutCode));
    const Text known = ErrorText(E_INVALIDARG);
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x80070057 ")), known.substr(0, 11));
    EXPECT_LT(11u, known.size());
    EXPECT_EQ(Text::npos, known.find(TREEVAULT_WIDE("<no description>")));
}

TEST(ErrorTextOfACode, IsThereForASuccessToo) {
    const Text text = ErrorText(S_OK);
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x00000000 ")), text.substr(0, 11));
    EXPECT_LT(11u, text.size());
}

TEST(ErrorTextOfARecord, OfOthersIsItsDescription) {
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x80004005 Boom")),
              ErrorText(E_FAIL, 0, MakeForeignRecord(TREEVAULT_WIDE("Boom")).Get()));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x80004005 0x80004001 Boom [x]")),
              ErrorText(E_FAIL, 0, MakeForeignRecord(TREEVAULT_WIDE("0x80004001 Boom [x]")).Get()));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x80004005 Boom")),
              ErrorText(E_FAIL, 0, MakeForeignRecord(TREEVAULT_WIDE("Boom\r\n")).Get()));
}

TEST(ErrorTextOfARecord, OfTheLibraryIsReadBack) {
    const Record record = MakeOwnRecord(TREEVAULT_WIDE("0x8004F123 Text [a,b;c]"));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 Text [a,b;c]")), ErrorText(Code, 0, record.Get()));
    EXPECT_EQ(Text(TREEVAULT_WIDE("Text")),
              ErrorText(Code, ErrorTextWithoutCode | ErrorTextWithoutDetails, record.Get()));
}

TEST(ErrorTextOfARecord, OfAnotherCodeIsIgnored) {
    const Record record = MakeOwnRecord(TREEVAULT_WIDE("0x80004005 Text [a]"));
    EXPECT_EQ(NoMessage, ErrorText(Code, 0, record.Get()));
    EXPECT_EQ(NoMessage, ErrorText(Code, 0, record.Get(), TREEVAULT_WIDE("0x8004F123 Raw")));
}

TEST(ErrorTextOfARecord, WithoutDescriptionCountsAsNone) {
    const Record record = MakeOwnRecord(nullptr);
    EXPECT_EQ(NoMessage, ErrorText(Code, 0, record.Get()));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 Raw [x]")),
              ErrorText(Code, 0, record.Get(), TREEVAULT_WIDE("0x8004F123 Raw [x]")));
}

TEST(ErrorTextOfARecord, ThatCannotBeReadCountsAsNone) {
    CountedRecord record;
    record.DescriptionResult = E_OUTOFMEMORY;
    EXPECT_EQ(NoMessage, ErrorText(Code, 0, &record));
}

TEST(ErrorTextOfARecord, OfTheLibraryGoesBeforeTheRawText) {
    const Record record = MakeOwnRecord(TREEVAULT_WIDE("0x8004F123 Record"));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 Record")),
              ErrorText(Code, 0, record.Get(), TREEVAULT_WIDE("0x8004F123 Raw [x]")));
}

TEST(ErrorTextOfARecord, OfOthersGoesBehindTheRawText) {
    const Record record = MakeForeignRecord(TREEVAULT_WIDE("Boom"));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 Raw [x]")),
              ErrorText(Code, 0, record.Get(), TREEVAULT_WIDE("0x8004F123 Raw [x]")));
    EXPECT_EQ(NoMessage, ErrorText(Code, 0, record.Get(), TREEVAULT_WIDE("0x80004005 Raw [x]")));
    EXPECT_EQ(Text(TREEVAULT_WIDE("0x8004F123 Boom")),
              ErrorText(Code, 0, record.Get(), TREEVAULT_WIDE("abc")));
}

struct RawCase {
    const WCHAR* Raw;
    const WCHAR* Wanted;
};

TEST(ErrorTextOfARawText, IsDecoded) {
    const RawCase cases[] = {
        {TREEVAULT_WIDE("0x8004F123 Text"), TREEVAULT_WIDE("0x8004F123 Text")},
        {TREEVAULT_WIDE("0x8004f123 Text"), TREEVAULT_WIDE("0x8004F123 Text")},
        {TREEVAULT_WIDE("2147807523 Text"), TREEVAULT_WIDE("0x8004F123 Text")},
        {TREEVAULT_WIDE("0x8004F123 Text [a] [b]"), TREEVAULT_WIDE("0x8004F123 Text [a] [b]")},
        {TREEVAULT_WIDE("0x8004F123 Text  [d]"), TREEVAULT_WIDE("0x8004F123 Text [d]")},
        {TREEVAULT_WIDE("0x8004F123 Text[d]"), TREEVAULT_WIDE("0x8004F123 Text [d]")},
        {TREEVAULT_WIDE("0x8004F123 [d]"), TREEVAULT_WIDE("0x8004F123 <no description> [d]")},
        {TREEVAULT_WIDE("0x8004F123 a]"), TREEVAULT_WIDE("0x8004F123 a]")},
        {TREEVAULT_WIDE("0x8004F123 ]"), TREEVAULT_WIDE("0x8004F123 ]")},
        {TREEVAULT_WIDE("0x8004F123 Text \t\r\n"), TREEVAULT_WIDE("0x8004F123 Text")},
        {TREEVAULT_WIDE("0x8004F123 a [d] "), TREEVAULT_WIDE("0x8004F123 a [d]")},
    };
    for (const RawCase& each : cases)
        EXPECT_EQ(Text(each.Wanted), ErrorText(Code, 0, nullptr, each.Raw)) << Narrow(each.Raw);
}

TEST(ErrorTextOfARawText, GivesTheMessageWhenNothingWasFound) {
    const WCHAR* const cases[] = {TREEVAULT_WIDE(""),
                                  TREEVAULT_WIDE("abc"),
                                  TREEVAULT_WIDE("0x8004F123"),
                                  TREEVAULT_WIDE("0x8004F123Text [d]"),
                                  TREEVAULT_WIDE("0x8004F123 "),
                                  TREEVAULT_WIDE("0x8004F123 []"),
                                  TREEVAULT_WIDE("0x80004005 Other [d]"),
                                  TREEVAULT_WIDE("abc 0x8004F123 Text"),
                                  TREEVAULT_WIDE("0x8004F123\tText")};
    for (const WCHAR* raw : cases)
        EXPECT_EQ(NoMessage, ErrorText(Code, 0, nullptr, raw)) << Narrow(raw);
}

TEST(ErrorTextOfARawText, MayBeWhatTheFunctionWrote) {
    const Text text = ErrorText(Code, 0, MakeOwnRecord(TREEVAULT_WIDE("0x8004F123 T [a;b]")).Get());
    EXPECT_EQ(text, ErrorText(Code, 0, nullptr, text.c_str()));
}

TEST(ErrorTextOfARawText, MayBeLong) {
    const Text raw = TREEVAULT_WIDE("0x8004F123 ") + Text(100000, TREEVAULT_WIDE('x'));
    EXPECT_EQ(raw, ErrorText(Code, 0, nullptr, raw.c_str()));
}

} // namespace
} // namespace treevault::tests
