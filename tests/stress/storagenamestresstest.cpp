// SPDX-License-Identifier: MIT
// Names of storages that are made, opened and forgotten from many threads.
#include "threads.h"

#include "support/storage.h"

namespace treevault::tests {
namespace {

using Opened = Handle<INodeStorage>;

HRESULT Open(const Text& name, Opened& storage) {
    return StgOpenStorageInstance(name.c_str(), storage.Put());
}

HRESULT Make(const Text& name, bool openIfExists, Opened& storage) {
    return StgCreateStorage(TREEVAULT_MEMORY_STORAGE, nullptr, name.c_str(), openIfExists ? 1 : 0,
                            storage.Put());
}

class StorageNameStress : public NodeTest {
protected:
    // Whatever else happens to storages of the name, it stands for one that is held.
    static void ExpectToStandFor(const Text& name, INodeStorage* held) {
        Opened storage;
        EXPECT_EQ(CodeText(S_OK), CodeText(Open(name, storage)));
        EXPECT_EQ(held, storage.Get());
        EXPECT_EQ(CodeText(S_OK), CodeText(Make(name, true, storage)));
        EXPECT_EQ(held, storage.Get());
        EXPECT_EQ(CodeText(TREEVAULT_E_STG_NAME_IN_USE), CodeText(Make(name, false, storage)));
    }

    static void ExpectFree(const Text& name) {
        Opened storage;
        EXPECT_EQ(CodeText(TREEVAULT_E_NOT_FOUND), CodeText(Open(name, storage)));
        EXPECT_EQ(CodeText(S_OK), CodeText(Make(name, false, storage)));
        ExpectToStandFor(name, storage);
    }

    // Some content makes a storage take its time to die.
    const Nodes Content = Trees("a(b c d e f g) h(i j k l m n) o(p q r s t u)");
};

const Text FewNames[] = {W("one"), W("two")};

TEST_F(StorageNameStress, NamesOfDyingStorages) {
    const Work open = [&](Choices& choices) {
        const Text& name = choices.Of(FewNames);
        Opened storage;
        if (const HRESULT hr = Open(name, storage); hr == S_OK)
            ExpectToStandFor(name, storage);
        else
            EXPECT_EQ(CodeText(TREEVAULT_E_NOT_FOUND), CodeText(hr));
    };
    const Work make = [&](Choices& choices) {
        const Text& name = choices.Of(FewNames);
        Opened storage;
        if (const HRESULT hr = Make(name, false, storage); hr == S_OK) {
            EXPECT_EQ(S_OK, StoreNodes(storage, nullptr, StoreMergeAll, Content));
            ExpectToStandFor(name, storage);
        } else {
            EXPECT_EQ(CodeText(TREEVAULT_E_STG_NAME_IN_USE), CodeText(hr));
        }
    };
    const Work makeOrOpen = [&](Choices& choices) {
        const Text& name = choices.Of(FewNames);
        Opened storage;
        // One that is dying is no longer to be opened, and its name not free yet.
        const HRESULT hr = Make(name, true, storage);
        EXPECT_TRUE(IsOneOf(hr, {S_OK, TREEVAULT_E_NOT_FOUND}));
        if (hr == S_OK)
            ExpectToStandFor(name, storage);
    };
    WorkTogether({open, make, makeOrOpen, makeOrOpen});
    for (const Text& name : FewNames)
        ExpectFree(name);
}

// The holder lets go at the moment at which another one comes for the name.
TEST_F(StorageNameStress, LastHandleIsClosedWhileTheNameIsAskedFor) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Opened last, opened, made;
        ASSERT_EQ(S_OK, Make(W("one"), false, last));
        ASSERT_EQ(S_OK, StoreNodes(last, nullptr, StoreMergeAll, Content));
        HRESULT codes[2] = {};
        RaceOnce({[&] { last.Close(); }, [&] { codes[0] = Open(W("one"), opened); },
                  [&] { codes[1] = Make(W("one"), false, made); }});
        EXPECT_TRUE(IsOneOf(codes[0], {S_OK, TREEVAULT_E_NOT_FOUND}));
        EXPECT_TRUE(IsOneOf(codes[1], {S_OK, TREEVAULT_E_STG_NAME_IN_USE}));
        if (codes[1] == S_OK)
            ExpectToStandFor(W("one"), made);
        if (codes[0] == S_OK)
            ExpectToStandFor(W("one"), opened);
        opened.Close();
        made.Close();
        ExpectFree(W("one"));
        EXPECT_EQ(static_cast<int32_t>(3 + 3 * 6), Made()); // the content alone
    }
}

TEST_F(StorageNameStress, OnlyOneThreadMakesAStorageOfAName) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Opened made[4];
        HRESULT codes[4] = {};
        std::vector<std::function<void()>> works;
        for (size_t i = 0; i < 4; ++i)
            works.emplace_back([&, i] { codes[i] = Make(W("one"), false, made[i]); });
        RaceOnce(works);
        EXPECT_EQ(1, std::count(std::begin(codes), std::end(codes), S_OK));
        for (size_t i = 0; i < 4; ++i) {
            EXPECT_TRUE(IsOneOf(codes[i], {S_OK, TREEVAULT_E_STG_NAME_IN_USE}));
            EXPECT_EQ(codes[i] == S_OK, made[i].Get() != nullptr);
            if (made[i])
                ExpectToStandFor(W("one"), made[i]);
        }
    }
    ExpectFree(W("one"));
}

TEST_F(StorageNameStress, AllThreadsGetTheOneThatIsMadeFirst) {
    const auto end = std::chrono::steady_clock::now() + WorkingTime();
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
        Opened made[4];
        std::vector<std::function<void()>> works;
        for (Opened& each : made)
            works.emplace_back(
                [&] { EXPECT_EQ(CodeText(S_OK), CodeText(Make(W("one"), true, each))); });
        RaceOnce(works);
        for (const Opened& each : made)
            EXPECT_EQ(made[0].Get(), each.Get());
        ExpectToStandFor(W("one"), made[0]);
    }
    ExpectFree(W("one"));
}

TEST_F(StorageNameStress, ManyNamesAtOnce) {
    const auto work = [&](const WCHAR* prefix) {
        return [&, prefix](Choices&) {
            constexpr size_t many = 20;
            Opened storages[many];
            const auto name = [&](size_t at) {
                return Text(prefix) + static_cast<WCHAR>('a' + at);
            };
            for (size_t at = 0; at < many; ++at)
                EXPECT_EQ(CodeText(S_OK), CodeText(Make(name(at), false, storages[at])));
            for (size_t at = 0; at < many; ++at)
                ExpectToStandFor(name(at), storages[at]);
            for (size_t at = 0; at < many; ++at) {
                storages[at].Close();
                Opened none;
                EXPECT_EQ(CodeText(TREEVAULT_E_NOT_FOUND), CodeText(Open(name(at), none)));
            }
        };
    };
    WorkTogether({work(W("1")), work(W("2")), work(W("3"))});
}

} // namespace
} // namespace treevault::tests
