// SPDX-License-Identifier: MIT
// The table, its statements and its observers.
#include "sqlitestore.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace treevault::benchmarks {

namespace {

constexpr const char* SharedFile = "file:/stored_nodes?vfs=memdb";

#define NODE_TABLE                                                                                 \
    "CREATE TABLE nodes (path TEXT PRIMARY KEY, type TEXT, count INTEGER, title TEXT, guid BLOB,"  \
    " stamp INTEGER)"

constexpr const char* UpsertText =
    "INSERT INTO nodes VALUES (?1, ?2, ?3, ?4, ?5, ?6) ON CONFLICT (path) DO UPDATE SET"
    " type = excluded.type, count = excluded.count, title = excluded.title,"
    " guid = excluded.guid, stamp = excluded.stamp";

void RequireSqlite(int result, int wanted) {
    if (result != wanted) {
        std::fprintf(stderr, "unexpected result of SQLite: %s\n", sqlite3_errstr(result));
        std::abort();
    }
}

// Statistics of memory would cost each allocation a lock.
const bool HasNoStatistics = [] {
    RequireSqlite(sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0), SQLITE_OK);
    return true;
}();

} // namespace

SqliteConnection::SqliteConnection(const char* file, const char* setup) {
    const int flags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
    RequireSqlite(sqlite3_open_v2(file, &Connection, flags, nullptr), SQLITE_OK);
    Execute("PRAGMA cache_size = -1000000");
    Execute("PRAGMA journal_mode = MEMORY");
    Execute("PRAGMA secure_delete = OFF");
    Execute(setup);
}

void SqliteConnection::Execute(const char* sql) {
    RequireSqlite(sqlite3_exec(Connection, sql, nullptr, nullptr, nullptr), SQLITE_OK);
}

SqliteStatement::SqliteStatement(sqlite3* connection, const char* sql) {
    RequireSqlite(
        sqlite3_prepare_v3(connection, sql, -1, SQLITE_PREPARE_PERSISTENT, &Statement, nullptr),
        SQLITE_OK);
}

void SqliteStatement::Bind(int parameter, const std::string& text) {
    sqlite3_bind_text(Statement, parameter, text.c_str(), static_cast<int>(text.size()),
                      SQLITE_STATIC);
}

void SqliteStatement::Bind(int parameter, int64_t number) {
    sqlite3_bind_int64(Statement, parameter, number);
}

void SqliteStatement::Bind(int parameter, const GUID& id) {
    sqlite3_bind_blob(Statement, parameter, &id, sizeof id, SQLITE_STATIC);
}

void SqliteStatement::Run() {
    RequireSqlite(sqlite3_step(Statement), SQLITE_DONE);
    Reset();
}

void SqliteStatement::Fetch() {
    RequireSqlite(sqlite3_step(Statement), SQLITE_ROW);
}

SqliteStore::SqliteStore(const char* file, bool hasRowIds)
    : Connection(file, hasRowIds ? NODE_TABLE : NODE_TABLE " WITHOUT ROWID"),
      BeginStatement(Connection, "BEGIN"), CommitStatement(Connection, "COMMIT"),
      RollbackStatement(Connection, "ROLLBACK"), UpsertStatement(Connection, UpsertText),
      DeleteStatement(Connection, "DELETE FROM nodes WHERE path = ?1"),
      NumberStatement(Connection, "SELECT count FROM nodes WHERE path = ?1") {
    Fill();
}

void SqliteStore::Fill() {
    Begin();
    for (const StoredNode& node : StoredNodes())
        Add(node, node);
    Commit();
}

void SqliteStore::Observe(size_t sinks) {
    Observers.clear();
    Counts.assign(sinks, 0);
    for (size_t at = 0; at < sinks; ++at)
        Observers.emplace_back([this, at](int operation, sqlite3_int64) {
            if (operation != SQLITE_INSERT)
                ++Counts[at];
        });
    sqlite3_update_hook(Connection, sinks == 0 ? nullptr : Tell, this);
}

void SqliteStore::Tell(void* self, int operation, const char*, const char*, sqlite3_int64 row) {
    for (const auto& observer : static_cast<SqliteStore*>(self)->Observers)
        observer(operation, row);
}

void SqliteStore::Upsert(const StoredNode& place, const StoredNode& values) {
    Begin();
    Add(place, values);
    Commit();
}

void SqliteStore::Delete(const StoredNode& place) {
    Begin();
    DeleteStatement.Bind(1, place.NarrowPath);
    DeleteStatement.Run();
    Commit();
}

void SqliteStore::Add(const StoredNode& place, const StoredNode& values) {
    UpsertStatement.Bind(1, place.NarrowPath);
    UpsertStatement.Bind(2, place.Data->Narrow->Type);
    UpsertStatement.Bind(3, int64_t{values.Data->Number});
    UpsertStatement.Bind(4, values.Data->Narrow->Title);
    UpsertStatement.Bind(5, values.Data->Id);
    UpsertStatement.Bind(6, static_cast<int64_t>(values.Data->Stamp));
    UpsertStatement.Run();
}

int32_t SqliteStore::NumberAt(const StoredNode& place) {
    NumberStatement.Bind(1, place.NarrowPath);
    NumberStatement.Fetch();
    const int32_t number = sqlite3_column_int(NumberStatement, 0);
    NumberStatement.Reset();
    return number;
}

uint64_t SqliteStore::Told() const {
    uint64_t told = 0;
    for (const uint64_t count : Counts)
        told += count;
    return told;
}

// --- Shared --------------------------------------------------------------------------------------

SqliteSharedStore::SqliteSharedStore() : Store(SharedFile, false) {}

// The connection begins with a query that brings the whole table into its cache.
SqliteSharedStore::Reader::Reader(SqliteSharedStore&)
    : Connection(SharedFile, "SELECT sum(stamp % 2) FROM nodes"),
      Select(Connection, "SELECT type, count, title, guid, stamp FROM nodes WHERE path = ?1") {}

namespace {

struct Row {
    std::string Type;
    int32_t Number;
    std::string Title;
    GUID Id;
    uint64_t Stamp;
};

std::string TextColumn(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return std::string(text, static_cast<size_t>(sqlite3_column_bytes(statement, column)));
}

} // namespace

void SqliteSharedStore::Reader::Retrieve(const StoredNode& place) {
    Select.Bind(1, place.NarrowPath);
    Select.Fetch();
    Row row;
    row.Type = TextColumn(Select, 0);
    row.Number = sqlite3_column_int(Select, 1);
    row.Title = TextColumn(Select, 2);
    std::memcpy(&row.Id, sqlite3_column_blob(Select, 3), sizeof row.Id);
    row.Stamp = static_cast<uint64_t>(sqlite3_column_int64(Select, 4));
    benchmark::DoNotOptimize(row);
    Select.Reset();
}

} // namespace treevault::benchmarks
