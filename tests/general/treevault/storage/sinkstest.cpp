// SPDX-License-Identifier: MIT
// Sinks: registration, the order of calls, failing sinks and what becomes of their records.
#include "support/errorrecords.h"
#include "support/storage.h"

#include <memory>

namespace treevault::tests {
namespace {

bool ComesFirst(const GUID& left, const GUID& right) {
    return std::memcmp(&left, &right, sizeof(GUID)) < 0;
}

class Sinks : public NodeTest {
protected:
    using RegistryHandle = Handle<IModifySinkRegistry>;

    RegistryHandle Registry() {
        return Query<IModifySinkRegistry>(Subject, IID_IModifySinkRegistry);
    }

    // The result of a call of the registry, which sets a record when it fails.
    template <class Call>
    static void ExpectRefused(HRESULT code, const Call& call) {
        ClearRecord();
        EXPECT_EQ(CodeText(code), CodeText(call()));
        Text record;
        EXPECT_TRUE(TakeRecord(record));
        EXPECT_EQ(0u, Narrow(record).find(CodeText(code))) << Narrow(record);
    }

    Storage Subject{"n{x=1}"};
};

// --- Registration --------------------------------------------------------------------------------

TEST_F(Sinks, RegisteredSinkHasOneReferenceMore) {
    const RegistryHandle registry = Registry();
    Sink sink;
    GUID id = {};
    EXPECT_EQ(S_OK, registry->RegisterSink(&sink, &id));
    EXPECT_EQ(2u, sink.References);
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m"));
    EXPECT_EQ(2u, sink.References);
    EXPECT_EQ(S_OK, registry->UnregisterSink(&id));
    EXPECT_EQ(1u, sink.References);
    EXPECT_EQ(Framed({"created /m"}), sink.Take());
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "o"));
    EXPECT_EQ(Calls{}, sink.Told);
}

TEST_F(Sinks, EachRegistrationHasAnIdOfItsOwn) {
    const RegistryHandle registry = Registry();
    Sink sink;
    GUID one = {}, two = {}, none = {};
    EXPECT_EQ(S_OK, registry->RegisterSink(&sink, &one));
    EXPECT_EQ(S_OK, registry->RegisterSink(&sink, &two));
    EXPECT_NE(0, std::memcmp(&one, &two, sizeof(GUID)));
    EXPECT_NE(0, std::memcmp(&one, &none, sizeof(GUID)));
    EXPECT_EQ(3u, sink.References);
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, ""));
    EXPECT_EQ((Calls{"start", "start", "precommit", "precommit", "finish(1)", "finish(1)"}),
              sink.Take());
    EXPECT_EQ(S_OK, registry->UnregisterSink(&one));
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, ""));
    EXPECT_EQ(Framed({}), sink.Told);
    EXPECT_EQ(S_OK, registry->UnregisterSink(&two));
}

TEST_F(Sinks, RemovingTwiceIsRefused) {
    const RegistryHandle registry = Registry();
    Sink sink;
    GUID id = {};
    EXPECT_EQ(S_OK, registry->RegisterSink(&sink, &id));
    EXPECT_EQ(S_OK, registry->UnregisterSink(&id));
    ExpectRefused(E_INVALIDARG, [&] { return registry->UnregisterSink(&id); });
    EXPECT_EQ(1u, sink.References);
}

TEST_F(Sinks, UnknownIdIsRefused) {
    const RegistryHandle registry = Registry();
    const GUID id = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    ExpectRefused(E_INVALIDARG, [&] { return registry->UnregisterSink(&id); });
}

TEST_F(Sinks, ArgumentsMustNotBeNull) {
    const RegistryHandle registry = Registry();
    Sink sink;
    GUID id = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    const GUID before = id;
    ExpectRefused(E_POINTER, [&] { return registry->RegisterSink(nullptr, &id); });
    ExpectRefused(E_POINTER, [&] { return registry->RegisterSink(&sink, nullptr); });
    ExpectRefused(E_POINTER, [&] { return registry->UnregisterSink(nullptr); });
    EXPECT_EQ(0, std::memcmp(&id, &before, sizeof(GUID)));
    EXPECT_EQ(1u, sink.References);
}

TEST_F(Sinks, DyingStorageReleasesItsSinks) {
    Sink one, two;
    GUID id = {};
    {
        const RegistryHandle registry = Registry();
        EXPECT_EQ(S_OK, registry->RegisterSink(&one, &id));
        EXPECT_EQ(S_OK, registry->RegisterSink(&two, &id));
    }
    EXPECT_EQ(2u, one.References);
    Subject.Close();
    EXPECT_EQ(1u, one.References);
    EXPECT_EQ(1u, two.References);
    EXPECT_EQ(Calls{}, one.Told);
}

TEST_F(Sinks, EachStorageHasItsOwn) {
    Storage other;
    Sink sink(Subject), otherSink(other);
    EXPECT_EQ(S_OK, other.Store(StoreMergeAll, "m"));
    EXPECT_EQ(Calls{}, sink.Told);
    EXPECT_EQ(Framed({"created /m"}), otherSink.Told);
    const RegistryHandle registry = Registry();
    EXPECT_EQ(E_INVALIDARG, registry->UnregisterSink(&otherSink.Id));
}

// --- Order ---------------------------------------------------------------------------------------

TEST_F(Sinks, AreCalledInTheOrderOfTheBytesOfTheirIds) {
    constexpr size_t count = 16;
    std::vector<std::unique_ptr<Sink>> sinks;
    std::vector<const Sink*> started;
    for (size_t i = 0; i < count; ++i) {
        sinks.push_back(std::make_unique<Sink>(static_cast<INodeStorage*>(Subject)));
        sinks.back()->Inside = [&started, sink = sinks.back().get()](const std::string&,
                                                                     const ModifyNotification*) {
            started.push_back(sink);
        };
    }
    std::vector<const Sink*> sorted;
    for (const auto& sink : sinks)
        sorted.push_back(sink.get());
    std::sort(sorted.begin(), sorted.end(),
              [](const Sink* left, const Sink* right) { return ComesFirst(left->Id, right->Id); });
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m"));
    ASSERT_EQ(4 * count, started.size());
    for (size_t at = 0; at < started.size(); at += count)
        EXPECT_EQ(sorted,
                  std::vector<const Sink*>(started.begin() + static_cast<ptrdiff_t>(at),
                                           started.begin() + static_cast<ptrdiff_t>(at + count)));
}

// --- Failing sinks -------------------------------------------------------------------------------

// The first of two sinks fails one call, and the second is not told of it.
class FailingSinks : public Sinks {
protected:
    void ExpectCalls(const std::string& refused, HRESULT result, const Calls& first,
                     const Calls& second) {
        Sink a(Subject), b(Subject);
        Sink& one = ComesFirst(a.Id, b.Id) ? a : b;
        Sink& two = &one == &a ? b : a;
        one.RefuseOn = refused;
        EXPECT_EQ(CodeText(result), CodeText(Subject.Store(StoreMergeAll, "n{x=2} m")));
        EXPECT_EQ(first, one.Told);
        EXPECT_EQ(second, two.Told);
    }
};

TEST_F(FailingSinks, AtStart) {
    ExpectCalls("start", S_OK, Framed({"changed /n [x]", "created /m"}),
                {"changed /n [x]", "created /m", "precommit", "finish(1)"});
}

TEST_F(FailingSinks, AtAChange) {
    ExpectCalls("created /m", Refusal, {"start", "changed /n [x]", "created /m", "finish(0)"},
                {"start", "changed /n [x]", "finish(0)"});
}

TEST_F(FailingSinks, AtPreCommit) {
    ExpectCalls("precommit", Refusal,
                {"start", "changed /n [x]", "created /m", "precommit", "finish(0)"},
                {"start", "changed /n [x]", "created /m", "finish(0)"});
}

TEST_F(FailingSinks, SecondOneFailsAfterTheFirstWasTold) {
    Sink a(Subject), b(Subject);
    Sink& first = ComesFirst(a.Id, b.Id) ? a : b;
    Sink& second = &first == &a ? b : a;
    second.RefuseOn = "created /m";
    EXPECT_EQ(Refusal, Subject.Store(StoreMergeAll, "m"));
    const Calls told = {"start", "created /m", "finish(0)"};
    EXPECT_EQ(told, first.Told);
    EXPECT_EQ(told, second.Told);
}

TEST_F(FailingSinks, AnySuccessCodeIsASuccess) {
    Sink sink(Subject);
    sink.RefuseOn = "created /m";
    sink.Code = S_FALSE;
    EXPECT_EQ(S_OK, Subject.Store(StoreMergeAll, "m"));
    EXPECT_EQ(Framed({"created /m"}), sink.Told);
}

// --- Records -------------------------------------------------------------------------------------

class SinkRecords : public Sinks {
protected:
    // The record that a store leaves when a sink sets one of this description and fails.
    std::string RecordOf(const std::string& refused, const WCHAR* description) {
        Sink sink(Subject);
        sink.RefuseOn = refused;
        sink.Inside = [&](const std::string& call, const ModifyNotification*) {
            if (call == refused && description)
                SetErrorInfo(0, MakeForeignRecord(description).Get());
        };
        ClearRecord();
        EXPECT_EQ(Refusal, Subject.Store(StoreMergeAll, "m"));
        Text record;
        EXPECT_TRUE(TakeRecord(record));
        return Narrow(record);
    }
};

TEST_F(SinkRecords, TextOfASinkComesThrough) {
    for (const char* call : {"created /m", "precommit"}) {
        const std::string record = RecordOf(call, W("the sink says no"));
        EXPECT_EQ(0u, record.find("0x8004ABCD the sink says no")) << record;
    }
}

// A record of the library's own form is taken apart; it must speak of the code that is returned.
TEST_F(SinkRecords, OnlyTheCodeCountsWhereThereIsNoText) {
    const std::string record = RecordOf("created /m", nullptr);
    EXPECT_EQ(0u, record.find("0x8004ABCD ")) << record;
    EXPECT_EQ(std::string::npos, record.find("says no")) << record;
}

// The pool and the storage each add the addresses of their boundary.
TEST_F(SinkRecords, EachBoundaryAddsItsAddresses) {
    const std::string record = RecordOf("created /m", W("no"));
    const size_t open = record.find('[');
    ASSERT_NE(std::string::npos, open) << record;
    EXPECT_EQ(1, std::count(record.begin() + static_cast<ptrdiff_t>(open), record.end(), ';'))
        << record;
}

} // namespace
} // namespace treevault::tests
