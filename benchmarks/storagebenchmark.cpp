// SPDX-License-Identifier: MIT
// Storages of 111,111 nodes: one node at a time or a thousand as one group, told to no, one or four
// observers, and retrieval on several threads. Every change really changes all four attributes.
#include "measure.h"
#include "sqlitestore.h"
#include "undologstore.h"
#include "vaultstore.h"

namespace treevault::benchmarks {

namespace {

constexpr size_t GroupSize = 1000;
constexpr size_t PlacesOfThread = 25000;

// One for all benchmarks, as filling it takes longer than most of them. What they change, they
// leave with values of the same kind and at the same paths.
template <class Store>
Store& Shared() {
    static Store store;
    return store;
}

// The order goes on from one benchmark to the next, so that no value is given twice.
template <class Store>
LeafOrder& SharedOrder() {
    static LeafOrder order;
    return order;
}

template <class Store>
Store& ObservedStore(benchmark::State& state) {
    Store& store = Shared<Store>();
    store.Observe(static_cast<size_t>(state.range(0)));
    return store;
}

// Counts the items of a benchmark, each of which all observers must have been told of once.
template <class Store>
void Finish(benchmark::State& state, Store& store, size_t itemsInIteration) {
    CountItems(state, itemsInIteration);
    const auto items = static_cast<uint64_t>(state.iterations()) * itemsInIteration;
    if (store.Told() != items * static_cast<uint64_t>(state.range(0)))
        state.SkipWithError("observers were told of another number of changes");
    store.Observe(0);
}

template <class Store>
void CheckNumber(benchmark::State& state, Store& store, const StoredNode& place, int32_t wanted) {
    if (store.NumberAt(place) != wanted)
        state.SkipWithError("a node does not hold what it should");
}

// Begins a group.
template <class Store>
void AddGroup(Store& store, const ChangeBatch& batch) {
    store.Begin();
    for (const Change& change : batch)
        store.Add(change.Place, change.Values);
}

// --- One node as a group of its own --------------------------------------------------------------

template <class Store>
void BM_UpsertNode(benchmark::State& state) {
    Store& store = ObservedStore<Store>(state);
    LeafOrder& order = SharedOrder<Store>();
    ChangeBatch batch(GroupSize);
    for (auto _ : state) {
        batch.Fill(order);
        const Stopwatch watch;
        for (const Change& change : batch)
            store.Upsert(change.Place, change.Values);
        state.SetIterationTime(watch.Seconds());
    }
    CheckNumber(state, store, order.Place(), order.Values().Data->Number);
    Finish(state, store, GroupSize);
}

// A thousand nodes, each a group of its own, are timed together; they are added again before the
// next.
template <class Store>
void BM_DeleteNode(benchmark::State& state) {
    Store& store = ObservedStore<Store>(state);
    LeafOrder& order = SharedOrder<Store>();
    ChangeBatch batch(GroupSize);
    for (auto _ : state) {
        batch.Fill(order);
        const Stopwatch watch;
        for (const Change& change : batch)
            store.Delete(change.Place);
        state.SetIterationTime(watch.Seconds());
        AddGroup(store, batch);
        store.Commit();
    }
    CheckNumber(state, store, order.Place(), order.Values().Data->Number);
    Finish(state, store, GroupSize);
}

// --- A thousand nodes as one group ---------------------------------------------------------------

template <class Store>
void BM_UpsertGroup(benchmark::State& state) {
    Store& store = ObservedStore<Store>(state);
    LeafOrder& order = SharedOrder<Store>();
    ChangeBatch batch(GroupSize);
    for (auto _ : state) {
        batch.Fill(order);
        const Stopwatch watch;
        AddGroup(store, batch);
        store.Commit();
        state.SetIterationTime(watch.Seconds());
    }
    CheckNumber(state, store, order.Place(), order.Values().Data->Number);
    Finish(state, store, GroupSize);
}

// The nodes change and change back. The last one must hold what it held before.
template <class Store>
void BM_UndoGroup(benchmark::State& state) {
    Store& store = ObservedStore<Store>(state);
    LeafOrder& order = SharedOrder<Store>();
    LeafOrder first = order;
    first.Next();
    const int32_t before = store.NumberAt(first.Place());
    ChangeBatch batch(GroupSize);
    for (auto _ : state) {
        batch.Fill(order);
        const Stopwatch watch;
        AddGroup(store, batch);
        store.Rollback();
        state.SetIterationTime(watch.Seconds());
    }
    CheckNumber(state, store, first.Place(), before);
    Finish(state, store, GroupSize);
}

// The rollback alone: from the refusal, when all changes are made, to the end of the undoing.
template <class Store>
void BM_RollbackGroup(benchmark::State& state) {
    Store& store = ObservedStore<Store>(state);
    LeafOrder& order = SharedOrder<Store>();
    LeafOrder first = order;
    first.Next();
    const int32_t before = store.NumberAt(first.Place());
    ChangeBatch batch(GroupSize);
    for (auto _ : state) {
        batch.Fill(order);
        AddGroup(store, batch);
        state.SetIterationTime(store.TimedRollback());
    }
    CheckNumber(state, store, first.Place(), before);
    Finish(state, store, GroupSize);
}

// --- Retrieval -----------------------------------------------------------------------------------

// Each thread has places of its own, more than the caches near it hold the nodes of. Elapsed time
// counts: it is what more threads are to save.
template <class Store>
void BM_RetrieveNode(benchmark::State& state) {
    typename Store::Reader reader(Shared<Store>());
    LeafOrder order(static_cast<size_t>(state.thread_index()) * PlacesOfThread);
    std::vector<StoredNode> places;
    for (size_t left = PlacesOfThread; left > 0; --left) {
        order.Next();
        places.push_back(order.Place());
    }
    size_t at = 0;
    for (auto _ : state) {
        reader.Retrieve(places[at]);
        at = at + 1 == PlacesOfThread ? 0 : at + 1;
    }
    CountItems(state, 1);
}

// The numbers of observers.
void Observed(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(0)->Arg(1)->Arg(4)->UseManualTime();
}

void Threaded(benchmark::internal::Benchmark* benchmark) {
    benchmark->UseRealTime()->Threads(1)->Threads(2)->Threads(4);
}

} // namespace

#define UPSERT_BENCHMARK(workload)                                                                 \
    BENCHMARK_TEMPLATE(workload, VaultStore)->Name(#workload "/treevault")->Apply(Observed);       \
    BENCHMARK_TEMPLATE(workload, SqliteStore)->Name(#workload "/sqlite")->Apply(Observed);         \
    BENCHMARK_TEMPLATE(workload, SqliteStoreWithoutRowIds)                                         \
        ->Name(#workload "/sqlite_without_rowids")                                                 \
        ->Arg(0)                                                                                   \
        ->UseManualTime();                                                                         \
    BENCHMARK_TEMPLATE(workload, UndoLogStore)->Name(#workload "/undo_log")->Apply(Observed)

UPSERT_BENCHMARK(BM_UpsertNode);
UPSERT_BENCHMARK(BM_UpsertGroup);
UPSERT_BENCHMARK(BM_UndoGroup);

// Most of an iteration is not timed, so that the time would ask for too many of them.
#define ROLLBACK_BENCHMARK(store, name)                                                            \
    BENCHMARK_TEMPLATE(BM_RollbackGroup, store)                                                    \
        ->Name("BM_RollbackGroup/" name)                                                           \
        ->Arg(1)                                                                                   \
        ->UseManualTime()                                                                          \
        ->Iterations(50)

ROLLBACK_BENCHMARK(VaultStore, "treevault");
ROLLBACK_BENCHMARK(SqliteStore, "sqlite");
ROLLBACK_BENCHMARK(UndoLogStore, "undo_log");

BENCHMARK_TEMPLATE(BM_DeleteNode, VaultStore)->Name("BM_DeleteNode/treevault")->Apply(Observed);
BENCHMARK_TEMPLATE(BM_DeleteNode, SqliteStore)->Name("BM_DeleteNode/sqlite")->Apply(Observed);
BENCHMARK_TEMPLATE(BM_DeleteNode, SqliteStoreWithoutRowIds)
    ->Name("BM_DeleteNode/sqlite_without_rowids")
    ->Arg(0)
    ->UseManualTime();

BENCHMARK_TEMPLATE(BM_RetrieveNode, VaultStore)->Name("BM_RetrieveNode/treevault")->Apply(Threaded);
BENCHMARK_TEMPLATE(BM_RetrieveNode, SqliteSharedStore)
    ->Name("BM_RetrieveNode/sqlite_without_rowids")
    ->Apply(Threaded);

} // namespace treevault::benchmarks
