// SPDX-License-Identifier: MIT
// Storing: which values count as equal, what a notification of changed attributes holds, and names
// and values of any size.
#include "support/storage.h"

namespace treevault::tests {
namespace {

class StoringValues : public NodeTest {
protected:
    // Stores a node "n" with an attribute "v" onto one with another; the calls of the second store.
    static Calls Replace(const Value& stored, const Value& given) {
        Storage storage;
        const Nodes first = {Create(W("n"))}, second = {Create(W("n"))};
        EXPECT_EQ(S_OK, Set(first[0], W("v"), stored));
        EXPECT_EQ(S_OK, Set(second[0], W("v"), given));
        EXPECT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeAll, first));
        Sink sink(storage);
        EXPECT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeAll, second));
        EXPECT_EQ(given, Get(Retrieve(storage, Filter("/n")).at(0), W("v")));
        return sink.Take();
    }

    static Value Binary(size_t size, char last = 'b') {
        return {VtBinary, std::string(size - 1, 'b') + last};
    }
};

const Calls Changed = Framed({"changed /n [v]"});
const Calls Quiet = Framed({});

TEST_F(StoringValues, EqualValuesAreLeftAlone) {
    EXPECT_EQ(Quiet, Replace(Int32Value(5), Int32Value(5)));
    EXPECT_EQ(Quiet, Replace(TextValue(W("")), TextValue(W(""))));
    EXPECT_EQ(Quiet, Replace({VtEmpty, ""}, {VtEmpty, ""}));
    EXPECT_EQ(Quiet, Replace({VtBinary, ""}, {VtBinary, ""}));
}

TEST_F(StoringValues, TypeSizeAndBytesTellValuesApart) {
    EXPECT_EQ(Changed, Replace(Int32Value(5), NumberValue(VtUInt32, int32_t{5})));
    EXPECT_EQ(Changed, Replace(Int32Value(5), Int32Value(6)));
    EXPECT_EQ(Changed, Replace(TextValue(W("a")), TextValue(W("ab"))));
    EXPECT_EQ(Changed, Replace({VtEmpty, ""}, {VtBinary, ""}));
    EXPECT_EQ(Changed, Replace({VtBinary, "a"}, {VtBinary, ""}));
    EXPECT_EQ(Changed, Replace({VtBinary, std::string("\0", 1)}, {VtBinary, ""}));
}

TEST_F(StoringValues, LargeValuesAreComparedWhole) {
    for (const size_t size : {127, 128, 129, 1000, 100000}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(Quiet, Replace(Binary(size), Binary(size)));
        EXPECT_EQ(Changed, Replace(Binary(size), Binary(size, 'c')));
        EXPECT_EQ(Changed, Replace(Binary(size), Binary(size + 1)));
        EXPECT_EQ(Changed, Replace(Binary(size), Int32Value(1)));
        EXPECT_EQ(Changed, Replace(Int32Value(1), Binary(size)));
    }
}

// Both were filled alike; what was deleted from them leaves as many attributes, of other names.
TEST_F(StoringValues, AttributesMeetByNameWhateverWasDeletedBefore) {
    const auto make = [](const WCHAR* deleted, int32_t first) {
        Node node = Create(W("n"));
        for (const WCHAR* name : {W("a"), W("b"), W("c")})
            EXPECT_EQ(S_OK, SetInt(node, name, first++));
        EXPECT_EQ(S_OK, AcnDeleteAttribute(node, deleted));
        return node;
    };
    Storage storage;
    ASSERT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeAll, {make(W("b"), 1)}));
    ASSERT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeAll, {make(W("c"), 11)}));
    EXPECT_EQ("n{a=11 b=12 c=3}", Forest(storage));
    ASSERT_EQ(S_OK, StoreNodes(storage, nullptr, StoreReplaceAll, {make(W("a"), 21)}));
    EXPECT_EQ("n{b=22 c=23}", Forest(storage));
}

// --- What a change shows -------------------------------------------------------------------------

TEST_F(StoringValues, ChangeHoldsTheOldAttributesAndTypeWithoutChildren) {
    Storage storage("n:T{a=1 b=2 c=3}(child)");
    Sink sink(storage);
    int changes = 0;
    sink.Inside = [&](const std::string&, const ModifyNotification* told) {
        if (!told || told->Mask != ModifyNodeChanged)
            return;
        ++changes;
        EXPECT_EQ("n:T{a=1 b=2 c=3}", Show(told->OldNode));
        EXPECT_EQ("n:U{a=9 b=2 d=4}(child)", Show(told->NewNode));
        EXPECT_EQ(Text(W("\\n")), Path(told->OldNode));
        EXPECT_EQ(nullptr, Parent(told->OldNode).Get());
    };
    EXPECT_EQ(S_OK, storage.Store(StoreReplaceAttributes, "n:U{a=9 b=2 d=4}(child)"));
    EXPECT_EQ(1, changes);
}

TEST_F(StoringValues, ChangedNamesAreTerminatedEachAndAtTheEnd) {
    Storage storage("n{one=1 two=2}");
    Sink sink(storage);
    Text names;
    sink.Inside = [&](const std::string&, const ModifyNotification* told) {
        if (told)
            names.assign(told->ChangedAttributes, 9);
    };
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "n{one=2 two=3}"));
    EXPECT_EQ(Text(W("one\0two\0\0"), 9), names);
}

TEST_F(StoringValues, StoredNodeIsTheSameObjectInEachNotification) {
    Storage storage("n{a=1}");
    Sink sink(storage);
    std::vector<Node> seen;
    sink.Inside = [&](const std::string&, const ModifyNotification* told) {
        if (told) {
            told->NewNode->AddRef();
            seen.emplace_back(told->NewNode);
        }
    };
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "n{a=2}"));
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "n{a=3}(c)"));
    ASSERT_EQ(4u, seen.size()); // changed; changed, created, child+
    EXPECT_EQ(seen[0].Get(), seen[1].Get());
    EXPECT_EQ(seen[0].Get(), seen[3].Get());
    EXPECT_EQ(seen[0].Get(), Parent(seen[2]).Get());
    EXPECT_NE(seen[0].Get(), Retrieve(storage, Filter("/n")).at(0).Get());
}

TEST_F(StoringValues, EachMergeTakesASnapshotOfItsOwn) {
    Storage storage("n{a=1}");
    Sink sink(storage);
    Calls old;
    sink.Inside = [&](const std::string&, const ModifyNotification* told) {
        if (told)
            old.push_back(Show(told->OldNode));
    };
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "n{a=2} n{a=3} n{a=3} n{a=4}"));
    EXPECT_EQ((Calls{"n{a=1}", "n{a=2}", "n{a=3}"}), old);
}

// --- Empty names of attributes -------------------------------------------------------------------

TEST_F(StoringValues, AttributeWithoutANameIsNeitherMergedNorDeleted) {
    Storage storage("n{=1 a=1}");
    Sink sink(storage);
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "n{=2 a=2}"));
    EXPECT_EQ("n{=1 a=2}", Forest(storage));
    EXPECT_EQ(S_OK, storage.Store(StoreReplaceAll, "n"));
    EXPECT_EQ("n{=1}", Forest(storage));
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "m{=3}"));
    EXPECT_EQ("m{=3} n{=1}", Forest(storage));
}

// --- Sizes of names ------------------------------------------------------------------------------

class StoringLengths : public NodeTest, public testing::WithParamInterface<size_t> {
protected:
    const std::string Long = std::string(GetParam(), 'x');
};

TEST_P(StoringLengths, OfNames) {
    Storage storage;
    Sink sink(storage);
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, Long + "(" + Long + "{a=1})"));
    EXPECT_EQ(S_OK, storage.Store(StoreReplaceAll, Long + "(" + Long + "{a=2})"));
    EXPECT_EQ(Long + "(" + Long + "{a=2})", Forest(storage));
    EXPECT_EQ(Framed({"created /" + Long}), Calls(sink.Told.begin(), sink.Told.begin() + 4));
    EXPECT_EQ("changed /" + Long + "/" + Long + " [a]", sink.Told.at(5));
}

TEST_P(StoringLengths, OfParentPaths) {
    Storage storage;
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "/a/" + Long + "/n{a=1}"));
    EXPECT_EQ("a(" + Long + "(n{a=1}))", Forest(storage));
    EXPECT_EQ("n{a=1}", Show(Retrieve(storage, Filter("/a/" + Long + "/n"))));
}

TEST_P(StoringLengths, OfTypes) {
    Storage storage("n:" + Long);
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "n:" + Long + "y"));
    EXPECT_EQ("n:" + Long + "y", Forest(storage));
    EXPECT_EQ(S_OK, storage.Store(StoreMergeAll, "n:T"));
    EXPECT_EQ("n:T", Forest(storage));
}

TEST_P(StoringLengths, OfListsOfAttributes) {
    Storage storage("n{b=1 " + Long + "=1}");
    for (const StoreMode mode : {StoreMergeAll, StoreMergeModified, StoreReplaceAll}) {
        Sink sink(storage);
        const std::string value = std::to_string(mode + 2);
        EXPECT_EQ(S_OK, storage.Store(mode, "n{a=1 b=1 " + Long + "=" + value + "}"));
        EXPECT_EQ("n{a=1 b=1 " + Long + "=" + value + "}", Forest(storage));
        EXPECT_EQ("changed /n [" + std::string(mode == StoreMergeAll ? "a " : "") + Long + "]",
                  sink.Told.at(1));
    }
    EXPECT_EQ(S_OK, storage.Store(StoreReplaceAttributes, "n{b=1}"));
    EXPECT_EQ("n{b=1}", Forest(storage));
}

INSTANTIATE_TEST_SUITE_P(Lengths, StoringLengths,
                         testing::Values(100, 122, 123, 124, 125, 126, 127, 128, 129, 1000, 70000));

} // namespace
} // namespace treevault::tests
