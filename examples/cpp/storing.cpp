// SPDX-License-Identifier: MIT
// C++17: a storage, a group of changes, a sink that refuses a group, and what is retrieved then.
#include "treevaultcpp.h"

#include <iostream>
#include <vector>

using namespace example;

namespace {

// The children of the node at `path`, taken two at a time.
std::vector<Node> Children(INodeStorage* storage, const WideText& path) {
    const Node filter = Create(nullptr, TREEVAULT_FILTER_BY_PATH);
    const uint8_t yes = 1;
    Check(AcnSetAttribute(filter.get(), TREEVAULT_WIDE("NodePath"), VtStringW, path.c_str(),
                          (path.size() + 1) * sizeof(WCHAR)));
    Check(AcnSetAttribute(filter.get(), TREEVAULT_WIDE("IsParent"), VtBool, &yes, sizeof(yes)));
    std::vector<Node> children;
    IRetrievalContext* context = nullptr;
    IACNode* batch[2];
    uint64_t count = 0;
    HRESULT result = StgRetrieveData(storage, filter.get(), &context, batch, 2, &count);
    while (SUCCEEDED(result) && count != 0) {
        for (uint64_t at = 0; at < count; ++at)
            children.emplace_back(batch[at]);
        result = StgRetrieveNextData(storage, context, batch, 2, &count);
    }
    StgCloseRetrivalContext(storage, context);
    Check(result);
    return children;
}

// Refuses a group that would leave less than nothing in stock. It lives longer than the storage, so
// that its references need no counting.
class StockKeeper final : public IModifySink {
public:
    explicit StockKeeper(INodeStorage* storage) : Watched(storage) {}

    uint32_t TREEVAULT_CALL AddRef() override { return 1; }
    uint32_t TREEVAULT_CALL Release() override { return 1; }
    HRESULT TREEVAULT_CALL QueryInterface(const GUID*, void**) override { return E_NOINTERFACE; }

    HRESULT TREEVAULT_CALL OnStart() override { return S_OK; }
    HRESULT TREEVAULT_CALL OnModified(const ModifyNotification*) override { return S_OK; }

    // The changes are in the storage already, and may be read on this thread.
    HRESULT TREEVAULT_CALL OnPreCommit() override {
        try {
            for (const Node& goods : Children(Watched, TREEVAULT_WIDE("\\stock")))
                if (std::stoi(Get(goods, TREEVAULT_WIDE("amount"))) < 0)
                    return E_ABORT;
            return S_OK;
        } catch (const std::exception&) {
            return E_FAIL; // no exception may cross the library
        }
    }
    void TREEVAULT_CALL OnFinish(int32_t) override {}

private:
    INodeStorage* Watched;
};

void Register(const Storage& storage, IModifySink& sink) {
    void* found = nullptr;
    Check(storage->QueryInterface(&IID_IModifySinkRegistry, &found));
    auto* registry = static_cast<IModifySinkRegistry*>(found);
    GUID id;
    const HRESULT result = registry->RegisterSink(&sink, &id);
    registry->Release();
    Check(result);
}

// A node says itself where it goes: its name is a path.
Node Amount(const WCHAR* path, int32_t amount) {
    Node node = Create(path);
    Set(node, TREEVAULT_WIDE("amount"), amount);
    return node;
}

// Both changes are made, or none.
void Sell(const Storage& storage, const WCHAR* order, int32_t sold, int32_t left) {
    const Group group = CreateGroup(storage);
    Store(storage, Amount(TREEVAULT_WIDE("\\stock\\apples"), left), group);
    Store(storage, Amount(order, sold), group);
    Check(StgFinalizeOperationsGroup(storage.get(), group.get()));
}

void Show(const char* when, const Storage& storage) {
    std::cout << when << ":";
    for (const Node& goods : Children(storage.get(), TREEVAULT_WIDE("\\stock")))
        std::cout << " " << Get(goods, TREEVAULT_WIDE("amount"));
    std::cout << " in stock, " << Children(storage.get(), TREEVAULT_WIDE("\\orders")).size()
              << " sold\n";
}

void Trade(const Storage& storage) {
    for (const WCHAR* path : {TREEVAULT_WIDE("\\stock\\apples"), TREEVAULT_WIDE("\\stock\\pears"),
                              TREEVAULT_WIDE("\\stock\\plums")})
        Store(storage, Amount(path, 10));
    Show("at first", storage);
    Sell(storage, TREEVAULT_WIDE("\\orders\\first"), 4, 6);
    Show("sold", storage);
    try {
        Sell(storage, TREEVAULT_WIDE("\\orders\\second"), 9, -3);
    } catch (const Error& error) {
        Show("refused", storage);
        std::cout << error.what() << "\n";
    }
}

} // namespace

int main() {
    try {
        Storage storage = CreateStorage();
        StockKeeper keeper(storage.get());
        Register(storage, keeper);
        Trade(storage);
        storage.reset();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
