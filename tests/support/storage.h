// SPDX-License-Identifier: MIT
// Storages as tests speak of them: handles that close themselves, a sink that keeps what it is
// told, and forests that compare as text in the notation of support/trees.h.
#ifndef TREEVAULT_TESTS_SUPPORT_STORAGE_H
#define TREEVAULT_TESTS_SUPPORT_STORAGE_H

#include "support/trees.h"

#include <functional>

namespace treevault::tests {

// --- Filters -------------------------------------------------------------------------------------

enum class Select { Itself, Children };

inline Node Filter(std::string_view path, Select what = Select::Itself) {
    Node filter = Create(nullptr, TREEVAULT_FILTER_BY_PATH);
    EXPECT_EQ(S_OK, Set(filter, W("NodePath"), TextValue(Wide(path))));
    if (what == Select::Children) {
        EXPECT_EQ(S_OK, Set(filter, W("IsParent"), {VtBool, std::string(1, '\1')}));
    }
    return filter;
}

inline Node FilterToDepth(std::string_view path, uint32_t depth, Select what = Select::Itself) {
    Node filter = Filter(path, what);
    EXPECT_EQ(S_OK, Set(filter, W("MaxDepth"), NumberValue(VtUInt32, depth)));
    return filter;
}

// --- Handles -------------------------------------------------------------------------------------

// Owns one reference to a component, or none.
template <class Interface>
class Handle {
public:
    Handle() = default;
    Handle(Handle&& other) noexcept : Held(std::exchange(other.Held, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(Held, other.Held);
        return *this;
    }
    ~Handle() { Close(); }

    operator Interface*() const { return Held; }
    Interface* operator->() const { return Held; }
    Interface* Get() const { return Held; }
    void Close() {
        if (Interface* const old = std::exchange(Held, nullptr))
            old->Release();
    }
    Interface** Put() {
        Close();
        return &Held;
    }

private:
    Interface* Held = nullptr;
};

template <class Interface>
Handle<Interface> Query(IComponentUnknown* object, const GUID& iid) {
    Handle<Interface> found;
    EXPECT_EQ(S_OK, object->QueryInterface(&iid, reinterpret_cast<void**>(found.Put())));
    return found;
}

// What a filter finds, up to `most`.
inline Nodes Retrieve(INodeStorage* storage, IACNode* filter, uint64_t most = 1000) {
    std::vector<IACNode*> handles(static_cast<size_t>(most) + 1);
    uint64_t count = 777777;
    EXPECT_TRUE(Succeeds(StgRetrieveData, storage, filter, nullptr, handles.data(), most, &count));
    Nodes nodes;
    for (size_t at = 0; at < count && at < handles.size(); ++at)
        nodes.emplace_back(handles[at]);
    return nodes;
}

// The whole forest.
inline std::string Forest(INodeStorage* storage, Flags flags = Flags::Hidden) {
    return Show(Retrieve(storage, Filter("/", Select::Children)), flags);
}

inline HRESULT StoreNodes(INodeStorage* storage, IOperationsGroup* group, StoreMode mode,
                          const Nodes& nodes) {
    std::vector<IACNode*> handles(nodes.begin(), nodes.end());
    handles.push_back(nullptr); // an array of no nodes is an array all the same
    return StgStoreData(storage, group, mode, handles.data(), nodes.size());
}

// A group of a storage.
class Group {
public:
    explicit Group(INodeStorage* storage) : Storage(storage) {
        EXPECT_TRUE(Succeeds(StgCreateOperationsGroup, storage, &Held));
    }
    ~Group() { StgCloseOperationsGroup(nullptr, Held); }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;

    Group& Store(StoreMode mode, std::string_view forest) {
        EXPECT_EQ(S_OK, StoreNodes(Storage, Held, mode, Trees(forest)));
        return *this;
    }
    Group& Delete(std::string_view path, Select what = Select::Itself) {
        EXPECT_EQ(S_OK, StgDeleteData(Storage, Held, Filter(path, what)));
        return *this;
    }
    HRESULT Finish() { return StgFinalizeOperationsGroup(Storage, Held); }
    IOperationsGroup* Get() const { return Held; }

private:
    INodeStorage* Storage;
    IOperationsGroup* Held = nullptr;
};

// A configuration node of the two switches.
inline Node Configuration(bool buildParents, bool atomicity) {
    Node node = Create();
    EXPECT_EQ(S_OK, Set(node, W("BuildParentNodesIfMissing"),
                        {VtBool, std::string(1, buildParents ? '\1' : '\0')}));
    EXPECT_EQ(S_OK,
              Set(node, W("MaintainAtomicity"), {VtBool, std::string(1, atomicity ? '\1' : '\0')}));
    return node;
}

// An unnamed storage.
class Storage {
public:
    Storage() : Storage(Node()) {}
    explicit Storage(const Node& configuration) {
        EXPECT_TRUE(Succeeds(StgCreateStorage, TREEVAULT_MEMORY_STORAGE, configuration, nullptr, 0,
                             Held.Put()));
    }
    // With content.
    explicit Storage(std::string_view forest) : Storage() {
        EXPECT_EQ(S_OK, Store(StoreMergeAll, forest));
    }

    operator INodeStorage*() const { return Held; }
    INodeStorage* operator->() const { return Held; }
    void Close() { Held.Close(); }

    HRESULT Store(StoreMode mode, std::string_view forest) {
        return StoreNodes(Held, nullptr, mode, Trees(forest));
    }
    HRESULT Delete(std::string_view path, Select what = Select::Itself) {
        return StgDeleteData(Held, nullptr, Filter(path, what));
    }
    void Configure(bool buildParents, bool atomicity) {
        const auto config = Query<IStorageConfig>(Held, IID_IStorageConfig);
        EXPECT_EQ(S_OK, config->Configure(Configuration(buildParents, atomicity)));
    }

private:
    Handle<INodeStorage> Held;
};

// --- Sinks ---------------------------------------------------------------------------------------

// A code that the library does not have.
inline constexpr HRESULT Refusal = static_cast<HRESULT>(0x8004ABCDu);

using Calls = std::vector<std::string>;

// A notification as "changed /a/b [x y]"; the bits of children show as "child+", "child-" or
// "child+-".
inline std::string Describe(const ModifyNotification& notification) {
    static const std::pair<ModifyMask, const char*> verbs[] = {
        {ModifyNodeDeleted, "deleted"}, {ModifyNodeCreated, "created"},
        {ModifyNodeChanged, "changed"}, {ModifyChildAdded, "child+"},
        {ModifyChildDeleted, "child-"}, {ModifyChildAdded | ModifyChildDeleted, "child+-"}};
    std::string text = "mask " + std::to_string(notification.Mask);
    for (const auto& [mask, verb] : verbs)
        if (mask == notification.Mask)
            text = verb;
    text += ' ' + Plain(notification.Path);
    if (!notification.ChangedAttributes)
        return text;
    text += " [";
    for (const WCHAR* name = notification.ChangedAttributes; *name != 0;) {
        const Text each = name;
        text += (text.back() == '[' ? "" : " ") + Plain(each);
        name += each.size() + 1;
    }
    return text + "]";
}

// Which nodes come with which mask, and that the path is theirs.
inline void ExpectInStep(const ModifyNotification& told) {
    const bool isChange = told.Mask == ModifyNodeChanged;
    EXPECT_EQ(told.Mask == ModifyNodeCreated, told.OldNode == nullptr);
    EXPECT_EQ(told.Mask == ModifyNodeDeleted, told.NewNode == nullptr);
    EXPECT_EQ(isChange, told.ChangedAttributes != nullptr);
    if (told.OldNode && told.NewNode) {
        EXPECT_EQ(isChange, told.OldNode != told.NewNode);
    }
    IACNode* const subject = told.NewNode ? told.NewNode : told.OldNode;
    EXPECT_EQ(Path(subject), Text(told.Path));
}

// Keeps what it is told. It lives on the stack.
class Sink final : public IModifySink {
public:
    Sink() = default;
    // Watches a storage for as long as it lives.
    explicit Sink(INodeStorage* storage) { Watch(storage); }
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    ~Sink() {
        if (Registry) {
            EXPECT_EQ(S_OK, Registry->UnregisterSink(&Id));
        }
        EXPECT_EQ(1u, References);
    }

    void Watch(INodeStorage* storage) {
        Registry = Query<IModifySinkRegistry>(storage, IID_IModifySinkRegistry);
        EXPECT_EQ(S_OK, Registry->RegisterSink(this, &Id));
    }

    // What was told since the last time.
    Calls Take() { return std::exchange(Told, {}); }

    std::string RefuseOn; // the text of a call that fails
    int RefuseAt = 0;     // the call of OnModified or OnPreCommit that fails, from 1
    HRESULT Code = Refusal;
    std::function<void(const std::string& call, const ModifyNotification*)> Inside;
    bool Checks = true; // a deep storage does without
    GUID Id = {};
    uint32_t References = 1;
    Calls Told;

    uint32_t TREEVAULT_CALL AddRef() override { return ++References; }
    uint32_t TREEVAULT_CALL Release() override { return --References; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }

    HRESULT TREEVAULT_CALL OnStart() override { return Note("start", nullptr); }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification* notification) override {
        if (Checks)
            ExpectInStep(*notification);
        ++Refusable;
        return Note(Describe(*notification), notification);
    }
    HRESULT TREEVAULT_CALL OnPreCommit() override {
        ++Refusable;
        return Note("precommit", nullptr);
    }
    void TREEVAULT_CALL OnFinish(int32_t result) override {
        Note("finish(" + std::to_string(result) + ")", nullptr);
    }

private:
    HRESULT Note(const std::string& call, const ModifyNotification* notification) {
        Told.push_back(call);
        if (Inside)
            Inside(call, notification);
        return call == RefuseOn || (RefuseAt != 0 && Refusable == RefuseAt) ? Code : S_OK;
    }

    Handle<IModifySinkRegistry> Registry;
    int Refusable = 0;
};

// The calls between start and the end of a group that succeeds.
inline Calls Framed(Calls calls) {
    calls.insert(calls.begin(), "start");
    calls.insert(calls.end(), {"precommit", "finish(1)"});
    return calls;
}

} // namespace treevault::tests

#endif
