// SPDX-License-Identifier: MIT
// Sinks that watch a storage and its plain model at once and do the same at the same call of both:
// fail, or come back into the storage.
#ifndef TREEVAULT_TESTS_STORAGE_STORAGEMODELSINKS_H
#define TREEVAULT_TESTS_STORAGE_STORAGEMODELSINKS_H

#include "storagemodelchoices.h"
#include "support/storage.h"

namespace treevault::tests {

// What a sink does in the storage from inside of a call.
struct Deed {
    enum { Nothing, Look, Store, Delete } What = Nothing;
    StoreMode Mode = StoreMergeAll;
    Given Subject;
    FilterSpec Spec;
    Node Filter;
};

inline std::string RealForest(INodeStorage* storage) {
    IACNode* handles[64];
    uint64_t count = 777777;
    EXPECT_EQ(S_OK, StgRetrieveData(storage, Filter("/", Select::Children), nullptr, handles,
                                    std::size(handles), &count));
    std::string text;
    for (size_t at = 0; at < count && at < std::size(handles); ++at)
        Show(text, Node(handles[at]).Get());
    return text;
}

inline std::string Do(const Deed& deed, ModelStorage& model) {
    if (deed.What == Deed::Look)
        return model.Forest();
    return CodeText(deed.What == Deed::Store ? model.Store(nullptr, deed.Mode, {deed.Subject.Model})
                                             : model.Delete(nullptr, deed.Spec));
}

inline std::string Do(const Deed& deed, INodeStorage* storage) {
    if (deed.What == Deed::Look)
        return RealForest(storage);
    IACNode* node = deed.Subject.Real;
    return CodeText(deed.What == Deed::Store ? StgStoreData(storage, nullptr, deed.Mode, &node, 1)
                                             : StgDeleteData(storage, nullptr, deed.Filter));
}

// What a sink does once, at one of its next calls.
struct Plan {
    bool AtPreCommit = false;
    size_t AtCall = 0; // from 1
    HRESULT Code = S_OK;
    Deed Inside;
};

// The calls of one sink on one side.
struct Progress {
    size_t Calls = 0;
    bool Done = false;

    bool IsDue(const Plan& plan, Call call) {
        ++Calls;
        if (Done || (Calls != plan.AtCall && !(plan.AtPreCommit && call == Call::PreCommit)))
            return false;
        Done = true;
        return true;
    }
};

// What the sinks of a storage and of its model were told, one line or more for each call.
struct Stories {
    std::string Expected, Seen;
};

class DoubleSink final : public IModifySink {
public:
    DoubleSink(INodeStorage* storage, ModelStorage& model, Stories& stories)
        : Subject(storage), Model(model), Told(stories),
          Registry(Query<IModifySinkRegistry>(storage, IID_IModifySinkRegistry)) {
        EXPECT_EQ(S_OK, Registry->RegisterSink(this, &Id));
        std::memcpy(Key.data(), &Id, Key.size());
        Model.Sinks[Key] = [this](const Notice& notice) {
            return Note(Told.Expected, OfModel, Model, notice.Which, notice.Show());
        };
    }
    ~DoubleSink() {
        EXPECT_EQ(S_OK, Registry->UnregisterSink(&Id));
        Model.Sinks.erase(Key);
    }
    DoubleSink(const DoubleSink&) = delete;
    DoubleSink& operator=(const DoubleSink&) = delete;

    // A sink is named for its rank, as its id is another one in each process.
    void Follow(char letter, Plan plan) {
        Letter = letter;
        Next = std::move(plan);
        OfModel = OfLibrary = {};
    }

    bool StandsBefore(const DoubleSink& other) const { return Key < other.Key; }

    uint32_t TREEVAULT_CALL AddRef() override { return 2; }
    uint32_t TREEVAULT_CALL Release() override { return 1; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }

    HRESULT TREEVAULT_CALL OnStart() override { return NoteReal(Call::Start, "start"); }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* told) override {
        std::string oldText, newText;
        if (told->OldNode)
            Show(oldText, told->OldNode);
        if (told->NewNode && told->NewNode == told->OldNode)
            newText = "same";
        else if (told->NewNode)
            Show(newText, told->NewNode);
        std::vector<Text> changed;
        EXPECT_EQ(told->Mask == ModifyNodeChanged, told->ChangedAttributes != nullptr);
        for (const WCHAR* name = told->ChangedAttributes; name && *name != 0;
             name += changed.back().size() + 1)
            changed.emplace_back(name);
        return NoteReal(Call::Modified,
                        ShowModified(told->Mask, told->Path, oldText, newText, changed));
    }
    HRESULT TREEVAULT_CALL OnPreCommit() override { return NoteReal(Call::PreCommit, "precommit"); }
    void TREEVAULT_CALL OnFinish(int32_t result) override {
        NoteReal(Call::Finish, "finish(" + std::to_string(result) + ")");
    }

private:
    HRESULT NoteReal(Call call, const std::string& shown) {
        return Note(Told.Seen, OfLibrary, Subject, call, shown);
    }

    template <class Side>
    HRESULT Note(std::string& story, Progress& progress, Side& side, Call call,
                 const std::string& shown) {
        ((story += Letter) += ' ' + shown) += '\n';
        if (!progress.IsDue(Next, call))
            return S_OK;
        if (Next.Inside.What != Deed::Nothing) {
            const std::string outcome = Do(Next.Inside, side);
            ((story += Letter) += " inside: " + outcome) += '\n';
        }
        return Next.Code;
    }

    INodeStorage* Subject;
    ModelStorage& Model;
    char Letter = '?';
    Stories& Told;
    Handle<IModifySinkRegistry> Registry;
    GUID Id = {};
    ModelStorage::SinkId Key = {};
    Plan Next;
    Progress OfModel, OfLibrary;
};

} // namespace treevault::tests

#endif
