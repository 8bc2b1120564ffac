// SPDX-License-Identifier: MIT
// The stored nodes in a storage of TreeVault, changed as a client changes them: for each upsert a
// node is made, given its attributes, stored and closed.
#ifndef TREEVAULT_BENCHMARKS_VAULTSTORE_H
#define TREEVAULT_BENCHMARKS_VAULTSTORE_H

#include "storednodes.h"

#include <memory>

namespace treevault::benchmarks {

class VaultStore {
public:
    explicit VaultStore(const Workload& workload = DeepWorkload());
    ~VaultStore();
    VaultStore(const VaultStore&) = delete;
    VaultStore& operator=(const VaultStore&) = delete;

    // From now on so many sinks are told, each of which counts.
    void Observe(size_t sinks);

    // Each is a group of its own.
    void Upsert(const StoredNode& place, const StoredNode& values);
    void Delete(const StoredNode& place);

    // One group, which ends with either of the last two.
    void Begin();
    void Add(const StoredNode& place, const StoredNode& values);
    void Commit();
    void Rollback();
    // The same with at least one sink; the seconds since that sink refused the group.
    double TimedRollback();

    int32_t NumberAt(const StoredNode& place);

    // How often sinks were told of a changed or deleted node, all sinks together.
    uint64_t Told() const;

    // Retrieves on one thread; each thread has its own.
    class Reader {
    public:
        explicit Reader(VaultStore& store);
        ~Reader() { AcnCloseNodeHandle(Filter); }
        Reader(const Reader&) = delete;
        Reader& operator=(const Reader&) = delete;

        // Gets a clone and closes it.
        void Retrieve(const StoredNode& place);
        int32_t NumberAt(const StoredNode& place);

    private:
        IACNode* Get(const StoredNode& place);

        INodeStorage* Storage;
        IACNode* Filter;
    };

private:
    class Sink;

    INodeStorage* Storage = nullptr;
    IOperationsGroup* Group = nullptr;
    IACNode* Filter;
    std::vector<std::unique_ptr<Sink>> Sinks;
};

} // namespace treevault::benchmarks

#endif
