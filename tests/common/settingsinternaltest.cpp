// SPDX-License-Identifier: MIT
// Settings: the list of sources, the two sources of the process, and the readers.
#include "common/environmentsettings.h"
#include "common/errorhandling.h"
#include "common/globalsettingsfile.h"
#include "common/settingvalue.h"

#include "support/environment.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>

#include <new>
#include <thread>
#include <vector>

namespace treevault {
namespace {

using namespace tests;

constexpr HRESULT NotFound = TREEVAULT_E_NOT_FOUND;

// Nobody but these tests reads this section.
const WCHAR* const Section = TV_W("SettingsTest");

// A source with one answer, which counts how often it was asked.
class FixedSource final : public SettingsSource {
public:
    explicit FixedSource(HRESULT result, const WCHAR* text = TV_W(""), uint32_t number = 0)
        : Result(result), Text(text), Number(number) {}

    HRESULT GetString(const WCHAR*, const WCHAR*, WideText& out) override {
        ++Asked;
        if (SUCCEEDED(Result))
            out = Text;
        return Result;
    }
    HRESULT GetNumber(const WCHAR*, const WCHAR*, uint32_t& out) override {
        ++Asked;
        if (SUCCEEDED(Result))
            out = Number;
        return Result;
    }

    HRESULT Result;
    WideText Text;
    uint32_t Number;
    int Asked = 0;
};

// --- The list ------------------------------------------------------------------------------------

TEST(SettingsSourceList, WithoutSourcesFindsNothing) {
    SettingsSourceList list;
    WideText text = TV_W("old");
    uint32_t number = 7;
    EXPECT_EQ(NotFound, list.GetString(nullptr, TV_W("Key"), text));
    EXPECT_EQ(NotFound, list.GetNumber(nullptr, TV_W("Key"), number));
    EXPECT_EQ(WideText(TV_W("old")), text);
    EXPECT_EQ(7u, number);
}

TEST(SettingsSourceList, AsksTheLastSourceFirst) {
    SettingsSourceList list;
    FixedSource first(S_OK, TV_W("first"), 1), last(S_OK, TV_W("last"), 2);
    list.Add(&first);
    list.Add(&last);
    WideText text;
    uint32_t number = 0;
    EXPECT_EQ(S_OK, list.GetString(nullptr, TV_W("Key"), text));
    EXPECT_EQ(S_OK, list.GetNumber(nullptr, TV_W("Key"), number));
    EXPECT_EQ(WideText(TV_W("last")), text);
    EXPECT_EQ(2u, number);
    EXPECT_EQ(0, first.Asked);
}

TEST(SettingsSourceList, GoesOnAfterAFailure) {
    for (const HRESULT failure : {NotFound, E_INVALIDARG, E_FAIL, E_UNEXPECTED}) {
        SettingsSourceList list;
        FixedSource first(S_OK, TV_W("first"), 1), last(failure);
        list.Add(&first);
        list.Add(&last);
        WideText text;
        uint32_t number = 0;
        EXPECT_EQ(S_OK, list.GetString(nullptr, TV_W("Key"), text));
        EXPECT_EQ(S_OK, list.GetNumber(nullptr, TV_W("Key"), number));
        EXPECT_EQ(WideText(TV_W("first")), text);
        EXPECT_EQ(1u, number);
        EXPECT_EQ(2, last.Asked);
    }
}

TEST(SettingsSourceList, ReturnsAnySuccessAsItStands) {
    SettingsSourceList list;
    FixedSource source(S_FALSE, TV_W("text"));
    list.Add(&source);
    WideText text;
    EXPECT_EQ(S_FALSE, list.GetString(nullptr, TV_W("Key"), text));
    EXPECT_EQ(WideText(TV_W("text")), text);
}

TEST(SettingsSourceList, EndsAtAnAbort) {
    SettingsSourceList list;
    FixedSource first(S_OK, TV_W("first"), 1), last(E_ABORT);
    list.Add(&first);
    list.Add(&last);
    WideText text = TV_W("old");
    uint32_t number = 7;
    EXPECT_EQ(E_ABORT, list.GetString(nullptr, TV_W("Key"), text));
    EXPECT_EQ(E_ABORT, list.GetNumber(nullptr, TV_W("Key"), number));
    EXPECT_EQ(WideText(TV_W("old")), text);
    EXPECT_EQ(7u, number);
    EXPECT_EQ(0, first.Asked);
}

TEST(SettingsSourceList, FailsAsNotFoundWhateverTheLastFailure) {
    SettingsSourceList list;
    FixedSource source(E_INVALIDARG);
    list.Add(&source);
    uint32_t number = 7;
    EXPECT_EQ(NotFound, list.GetNumber(nullptr, TV_W("Key"), number));
}

TEST(SettingsSourceList, ForgetsARemovedSource) {
    SettingsSourceList list;
    FixedSource first(S_OK, TV_W("first")), last(S_OK, TV_W("last"));
    list.Add(&first);
    list.Add(&last);
    list.Remove(&last);
    list.Remove(&last);
    WideText text;
    EXPECT_EQ(S_OK, list.GetString(nullptr, TV_W("Key"), text));
    EXPECT_EQ(WideText(TV_W("first")), text);
    list.Remove(&first);
    EXPECT_EQ(NotFound, list.GetString(nullptr, TV_W("Key"), text));
}

TEST(SettingsSourceList, PassesSectionAndKeyOn) {
    struct EchoSource final : SettingsSource {
        HRESULT GetString(const WCHAR* section, const WCHAR* key, WideText& out) override {
            out = (section ? section : TV_W("<null>")) + WideText(TV_W("/")) + key;
            return S_OK;
        }
        HRESULT GetNumber(const WCHAR*, const WCHAR*, uint32_t&) override { return E_FAIL; }
    } source;
    SettingsSourceList list;
    list.Add(&source);
    WideText text;
    list.GetString(TV_W("S"), TV_W("K"), text);
    EXPECT_EQ(WideText(TV_W("S/K")), text);
    list.GetString(nullptr, TV_W("K"), text);
    EXPECT_EQ(WideText(TV_W("<null>/K")), text);
}

// Takes itself and others out of the list, and asks it in turn.
struct SelfishSource final : SettingsSource {
    explicit SelfishSource(SettingsSourceList& list) : List(list) {}
    HRESULT GetString(const WCHAR* section, const WCHAR* key, WideText& out) override {
        List.Remove(this);
        return List.GetString(section, key, out);
    }
    HRESULT GetNumber(const WCHAR*, const WCHAR*, uint32_t&) override {
        List.Remove(this);
        for (SettingsSource* other : Others)
            List.Remove(other);
        return E_FAIL;
    }
    SettingsSourceList& List;
    std::vector<SettingsSource*> Others;
};

TEST(SettingsSourceList, MayBeUsedByASourceThatIsAsked) {
    SettingsSourceList list;
    FixedSource first(S_OK, TV_W("first"), 1);
    SelfishSource selfish(list);
    list.Add(&first);
    list.Add(&selfish);
    WideText text;
    EXPECT_EQ(S_OK, list.GetString(nullptr, TV_W("Key"), text));
    EXPECT_EQ(WideText(TV_W("first")), text);
    list.Add(&selfish);
    uint32_t number = 0;
    EXPECT_EQ(S_OK, list.GetNumber(nullptr, TV_W("Key"), number));
    EXPECT_EQ(1u, number);
}

TEST(SettingsSourceList, DoesNotAskWhatASourceTookOut) {
    SettingsSourceList list;
    FixedSource first(NotFound), second(S_OK), third(S_OK);
    SelfishSource selfish(list);
    selfish.Others = {&second, &third};
    for (FixedSource* source : {&first, &second, &third})
        list.Add(source);
    list.Add(&selfish);
    uint32_t number = 0;
    EXPECT_EQ(NotFound, list.GetNumber(nullptr, TV_W("Key"), number));
    EXPECT_EQ(1, first.Asked);
    EXPECT_EQ(0, second.Asked);
    EXPECT_EQ(0, third.Asked);
}

TEST(SettingsSourceList, RaisesLackOfMemory) {
    struct GreedySource final : SettingsSource {
        HRESULT GetString(const WCHAR*, const WCHAR*, WideText&) override {
            throw std::bad_alloc();
        }
        HRESULT GetNumber(const WCHAR*, const WCHAR*, uint32_t&) override {
            throw std::bad_alloc();
        }
    } source;
    SettingsSourceList list;
    list.Add(&source);
    WideText text;
    uint32_t number = 0;
    const auto codeOf = [](const auto& body) {
        try {
            body();
        } catch (const HRX& failure) {
            return failure.Code;
        }
        return S_OK;
    };
    EXPECT_EQ(E_OUTOFMEMORY, codeOf([&] { list.GetString(nullptr, TV_W("Key"), text); }));
    EXPECT_EQ(E_OUTOFMEMORY, codeOf([&] { list.GetNumber(nullptr, TV_W("Key"), number); }));
}

TEST(SettingsSourceList, ServesManyThreads) {
    SettingsSourceList list;
    FixedSource source(S_OK, TV_W("text"), 5);
    list.Add(&source);
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&] {
                FixedSource own(NotFound);
                for (int round = 0; round < 500; ++round) {
                    list.Add(&own);
                    WideText text;
                    if (list.GetString(nullptr, TV_W("Key"), text) != S_OK || text.size() != 4)
                        ++wrong;
                    list.Remove(&own);
                }
            });
    }
    EXPECT_EQ(0, wrong);
    EXPECT_EQ(2000, source.Asked);
}

// --- The environment -----------------------------------------------------------------------------

TEST(EnvironmentSettings, AreNamedBySectionAndKey) {
    const VariableInForce variable("GS_SettingsTest_Key", "abc");
    SettingsSourceList list;
    EnvironmentSettings source(list);
    WideText text;
    EXPECT_EQ(S_OK, source.GetString(Section, TV_W("Key"), text));
    EXPECT_EQ(WideText(TV_W("abc")), text);
    EXPECT_EQ(NotFound, source.GetString(Section, TV_W("Other"), text));
    EXPECT_EQ(NotFound, source.GetString(TV_W("Other"), TV_W("Key"), text));
    EXPECT_EQ(WideText(TV_W("abc")), text);
}

TEST(EnvironmentSettings, HaveAGeneralSection) {
    const VariableInForce variable("GS_General_SettingsTestKey", "abc");
    SettingsSourceList list;
    EnvironmentSettings source(list);
    WideText text;
    EXPECT_EQ(S_OK, source.GetString(nullptr, TV_W("SettingsTestKey"), text));
    EXPECT_EQ(WideText(TV_W("abc")), text);
    EXPECT_EQ(S_OK, source.GetString(TV_W("General"), TV_W("SettingsTestKey"), text));
    EXPECT_EQ(NotFound, source.GetString(TV_W(""), TV_W("SettingsTestKey"), text));
}

TEST(EnvironmentSettings, AreTrimmed) {
    VariableInForce variable("GS_SettingsTest_Key", " \t\r\n\v\fa b \t\r\n\v\f");
    SettingsSourceList list;
    EnvironmentSettings source(list);
    WideText text;
    EXPECT_EQ(S_OK, source.GetString(Section, TV_W("Key"), text));
    EXPECT_EQ(WideText(TV_W("a b")), text);
    variable.Change("\xC2\xA0x\xC2\xA0");
    EXPECT_EQ(S_OK, source.GetString(Section, TV_W("Key"), text));
    EXPECT_EQ("\xC2\xA0x\xC2\xA0", ToUtf8(text)) << "white space is that of the C locale";
}

TEST(EnvironmentSettings, MayBeEmpty) {
    VariableInForce variable("GS_SettingsTest_Key", "");
    SettingsSourceList list;
    EnvironmentSettings source(list);
    for (const char* value : {"", " ", " \t "}) {
        variable.Change(value);
        WideText text = TV_W("old");
        EXPECT_EQ(S_OK, source.GetString(Section, TV_W("Key"), text));
        EXPECT_TRUE(text.empty());
    }
}

TEST(EnvironmentSettings, AreReadAnewAtEachCall) {
    VariableInForce variable("GS_SettingsTest_Key", "one");
    SettingsSourceList list;
    EnvironmentSettings source(list);
    WideText text;
    source.GetString(Section, TV_W("Key"), text);
    variable.Change("two");
    source.GetString(Section, TV_W("Key"), text);
    EXPECT_EQ(WideText(TV_W("two")), text);
    variable.Change(nullptr);
    EXPECT_EQ(NotFound, source.GetString(Section, TV_W("Key"), text));
}

TEST(EnvironmentSettings, ParseNumbersWithTheirBase) {
    VariableInForce variable("GS_SettingsTest_Key", "");
    SettingsSourceList list;
    EnvironmentSettings source(list);
    const std::pair<const char*, uint32_t> numbers[] = {
        {"0", 0},     {"42", 42},         {" 42 ", 42},
        {"0x10", 16}, {"0XfF", 255},      {"010", 8},
        {"+5", 5},    {"-1", 0xFFFFFFFF}, {"4294967295", 0xFFFFFFFF},
    };
    for (const auto& [value, expected] : numbers) {
        variable.Change(value);
        uint32_t number = 7;
        EXPECT_EQ(S_OK, source.GetNumber(Section, TV_W("Key"), number)) << value;
        EXPECT_EQ(expected, number) << value;
    }
}

TEST(EnvironmentSettings, RefuseWhatIsNotANumberAsAWhole) {
    VariableInForce variable("GS_SettingsTest_Key", "");
    SettingsSourceList list;
    EnvironmentSettings source(list);
    for (const char* value : {"", " ", "x", "10x", "1 2", "0x", "08", "-", "1.5", "true"}) {
        variable.Change(value);
        uint32_t number = 7;
        EXPECT_EQ(E_INVALIDARG, source.GetNumber(Section, TV_W("Key"), number)) << value;
        EXPECT_EQ(7u, number) << value;
    }
    variable.Change(nullptr);
    uint32_t number = 7;
    EXPECT_EQ(NotFound, source.GetNumber(Section, TV_W("Key"), number));
    EXPECT_EQ(7u, number);
}

TEST(SettingValue, WithANulInsideIsNoNumber) {
    FixedSource source(S_OK);
    source.Text = WideText(TV_W("12\0"), 3);
    uint32_t number = 7;
    EXPECT_EQ(E_INVALIDARG, ReadSettingNumber(source, nullptr, TV_W("Key"), number));
    EXPECT_EQ(7u, number);
}

TEST(SettingsSources, AreInTheListWhileTheyLive) {
    const VariableInForce variable("GS_SettingsTest_Key", "abc");
    SettingsSourceList list;
    WideText text;
    {
        const EnvironmentSettings source(list);
        EXPECT_EQ(S_OK, list.GetString(Section, TV_W("Key"), text));
    }
    EXPECT_EQ(NotFound, list.GetString(Section, TV_W("Key"), text));
}

// --- The readers of the process ------------------------------------------------------------------

TEST(SettingReaders, AskTheListOfTheProcess) {
    FixedSource source(S_OK, TV_W("added"), 3);
    GetSettingsSources()->Add(&source);
    WideText text;
    uint32_t number = 0;
    EXPECT_EQ(S_OK, GetSetting(Section, TV_W("Key"), text));
    EXPECT_EQ(S_OK, GetSettingNumber(Section, TV_W("Key"), number));
    EXPECT_EQ(WideText(TV_W("added")), text);
    EXPECT_EQ(3u, number);
    EXPECT_EQ(WideText(TV_W("added")), GetStringSetting(Section, TV_W("Key"), TV_W("default")));
    EXPECT_TRUE(GetBooleanSetting(Section, TV_W("Key")));
    source.Number = 0;
    EXPECT_FALSE(GetBooleanSetting(Section, TV_W("Key")));
    GetSettingsSources()->Remove(&source);
    EXPECT_EQ(NotFound, GetSetting(Section, TV_W("Key"), text));
    EXPECT_EQ(NotFound, GetSettingNumber(Section, TV_W("Key"), number));
}

TEST(SettingReaders, TakeTheirDefaultOnAnyFailure) {
    for (const HRESULT failure : {E_ABORT, NotFound, E_FAIL}) {
        FixedSource source(failure);
        GetSettingsSources()->Add(&source);
        EXPECT_EQ(WideText(TV_W("default")),
                  GetStringSetting(Section, TV_W("Key"), TV_W("default")));
        EXPECT_FALSE(GetBooleanSetting(Section, TV_W("Key")));
        GetSettingsSources()->Remove(&source);
    }
}

TEST(SettingReaders, AnAbortHidesWhatLiesBelow) {
    const VariableInForce variable("GS_SettingsTest_Key", "1");
    FixedSource source(E_ABORT);
    GetSettingsSources()->Add(&source);
    WideText text;
    EXPECT_EQ(E_ABORT, GetSetting(Section, TV_W("Key"), text));
    EXPECT_FALSE(GetBooleanSetting(Section, TV_W("Key")));
    GetSettingsSources()->Remove(&source);
    EXPECT_TRUE(GetBooleanSetting(Section, TV_W("Key")));
}

TEST(SettingReaders, ANumberThatIsNoneIsAFalse) {
    VariableInForce variable("GS_SettingsTest_Key", "true");
    EXPECT_FALSE(GetBooleanSetting(Section, TV_W("Key")));
    variable.Change("2");
    EXPECT_TRUE(GetBooleanSetting(Section, TV_W("Key")));
    variable.Change("0");
    EXPECT_FALSE(GetBooleanSetting(Section, TV_W("Key")));
}

} // namespace
} // namespace treevault
