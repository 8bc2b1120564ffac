// SPDX-License-Identifier: MIT
// The stored nodes in a table of SQLite in memory, one row for each.
//
// All that SQLite asks of its users for speed is done: statements are prepared once, text is bound
// without copies and in SQLite's own encoding, every page stays in the cache of the connection, and
// connections do without locks, since each has one thread. SQLite tells observers of changes to
// tables with rowids alone; a table without them is the faster one.
#ifndef TREEVAULT_BENCHMARKS_SQLITESTORE_H
#define TREEVAULT_BENCHMARKS_SQLITESTORE_H

#include "measure.h"
#include "storednodes.h"

#include <sqlite3.h>

#include <functional>

namespace treevault::benchmarks {

// A connection that closes itself. It begins with running `setup`.
class SqliteConnection {
public:
    SqliteConnection(const char* file, const char* setup);
    ~SqliteConnection() { sqlite3_close_v2(Connection); }
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    operator sqlite3*() const { return Connection; }

private:
    void Execute(const char* sql);

    sqlite3* Connection = nullptr;
};

// A prepared statement.
class SqliteStatement {
public:
    SqliteStatement(sqlite3* connection, const char* sql);
    ~SqliteStatement() { sqlite3_finalize(Statement); }
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    operator sqlite3_stmt*() const { return Statement; }
    void Bind(int parameter, const std::string& text);
    void Bind(int parameter, int64_t number);
    void Bind(int parameter, const GUID& id);
    // To the end, with a row or without as the caller expects.
    void Run();
    void Fetch();
    void Reset() { sqlite3_reset(Statement); }

private:
    sqlite3_stmt* Statement = nullptr;
};

class SqliteStore {
public:
    // A database of one connection, whose table has rowids.
    SqliteStore() : SqliteStore(":memory:", true) {}
    SqliteStore(const char* file, bool hasRowIds);

    // From now on one hook calls so many observers, each of which counts.
    void Observe(size_t sinks);

    // Each is a transaction of its own, begun and committed.
    void Upsert(const StoredNode& place, const StoredNode& values);
    void Delete(const StoredNode& place);

    // One transaction, which ends with either of the last two.
    void Begin() { BeginStatement.Run(); }
    void Add(const StoredNode& place, const StoredNode& values);
    void Commit() { CommitStatement.Run(); }
    void Rollback() { RollbackStatement.Run(); }
    double TimedRollback() {
        const Stopwatch watch;
        Rollback();
        return watch.Seconds();
    }

    int32_t NumberAt(const StoredNode& place);

    // How often observers were told of a changed or deleted row, all together.
    uint64_t Told() const;

private:
    void Fill();
    static void Tell(void* self, int operation, const char*, const char*, sqlite3_int64 row);

    SqliteConnection Connection;
    SqliteStatement BeginStatement, CommitStatement, RollbackStatement;
    SqliteStatement UpsertStatement, DeleteStatement, NumberStatement;
    std::vector<std::function<void(int, sqlite3_int64)>> Observers;
    std::vector<uint64_t> Counts;
};

// Cannot be observed.
class SqliteStoreWithoutRowIds : public SqliteStore {
public:
    SqliteStoreWithoutRowIds() : SqliteStore(":memory:", false) {}
};

// The nodes again, in a database in memory that connections share: SQLite's "memdb", where readers
// do not wait for each other, other than with a cache that connections share. Without rowids.
class SqliteSharedStore {
public:
    SqliteSharedStore();

    // Retrieves on one thread; each thread has its own, with a connection of its own.
    class Reader {
    public:
        explicit Reader(SqliteSharedStore& store);

        // Copies the row into a struct of its own.
        void Retrieve(const StoredNode& place);

    private:
        SqliteConnection Connection;
        SqliteStatement Select;
    };

private:
    SqliteStore Store; // keeps the database alive
};

} // namespace treevault::benchmarks

#endif
