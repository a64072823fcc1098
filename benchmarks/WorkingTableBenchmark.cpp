#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <memory>
#include <string>

#include "benchmarks/FreshMachine.h"
#include "database/Session.h"
#include "export/WorkingTable.h"
#include "resources/Icons.h"

// The working table beside statements written by hand.

namespace {

constexpr std::int64_t kRows = 100'000;
const UnicodeString kFile = u"C:\\Projekte\\Getriebe 08-15\\Wellen\\Lagerung\\Rillenkugellager 6206.ipt";
const UnicodeString kName = u"Rillenkugellager 6206";

/// An open query on a machine of its own.
struct TTable {
  TTable() {
    Database.Folder = u"C:\\Temp";
    Session.Open();
    Database.Open();
    CreateWorkingTable(Query, u"PC-01");
  }

  TFreshMachine Fresh;
  TSession Session;
  TDatabase Database{Session};
  TQuery Query{Database};
};

void InsertAndWalkByQuery(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto table = std::make_unique<TTable>();
    const std::size_t before = HeapInUse();
    state.ResumeTiming();
    TQuery& query = table->Query;
    for (std::int64_t i = 0; i < kRows; ++i) InsertFile(query, {ICON_PART, kFile, kName, 1, i / 10});
    std::size_t length = 0;
    const TField file = query.Field(u"Filename");
    const TField key = query.Field(u"AutoID");
    for (query.First(); !query.Eof(); query.Next()) {
      length += file.AsText().size() + static_cast<std::size_t>(key.AsInteger());
    }
    Check(length > kRows * kFile.size());
    state.PauseTiming();
    state.counters["bytes/row"] = static_cast<double>(HeapInUse() - before) / kRows;
    table.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(InsertAndWalkByQuery)->Unit(benchmark::kMillisecond);

/// The same by hand, in the engine's own setting for texts and as one transaction or a statement each.
void InsertAndWalkByHand(benchmark::State& state) {
  const bool inOneTransaction = state.range(0) != 0;
  for (auto _ : state) {
    sqlite3* connection = nullptr;
    Check(sqlite3_open(":memory:", &connection) == SQLITE_OK);
    const auto run = [connection](const char* sql) {
      Check(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK);
    };
    const auto prepare = [connection](const char* sql) {
      sqlite3_stmt* statement = nullptr;
      Check(sqlite3_prepare_v2(connection, sql, -1, &statement, nullptr) == SQLITE_OK);
      return statement;
    };
    run("PRAGMA encoding='UTF-16le'; PRAGMA temp_store=MEMORY;"
        "CREATE TEMP TABLE T (ImgIndex Integer,DoCopy Boolean,Filename Char(200),DisplayName "
        "Char(50),IamIndex "
        "Integer,DTID Integer,Tabelle Char(50),NewID Integer,Parent Integer,NewFilename Char(200),AutoID "
        "INTEGER "
        "PRIMARY KEY)");
    if (inOneTransaction) run("BEGIN");
    sqlite3_stmt* const insert = prepare("INSERT INTO T VALUES(?,?,?,?,?,?,?,?,?,NULL,NULL)");
    for (std::int64_t i = 0; i < kRows; ++i) {
      sqlite3_bind_int(insert, 1, ICON_PART);
      sqlite3_bind_int(insert, 2, 1);
      sqlite3_bind_text16(insert, 3, kFile.data(), static_cast<int>(kFile.size() * 2), SQLITE_STATIC);
      sqlite3_bind_text16(insert, 4, kName.data(), static_cast<int>(kName.size() * 2), SQLITE_STATIC);
      sqlite3_bind_int(insert, 5, 1);
      sqlite3_bind_int(insert, 6, 0);
      sqlite3_bind_text16(insert, 7, u"", 0, SQLITE_STATIC);
      sqlite3_bind_int(insert, 8, -1);
      sqlite3_bind_int64(insert, 9, i / 10);
      Check(sqlite3_step(insert) == SQLITE_DONE);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    if (inOneTransaction) run("COMMIT");
    sqlite3_stmt* const select = prepare("SELECT * FROM T");
    std::size_t length = 0;
    while (sqlite3_step(select) == SQLITE_ROW) {
      const auto* const text = static_cast<const char16_t*>(sqlite3_column_text16(select, 2));
      const UnicodeString file(text, static_cast<std::size_t>(sqlite3_column_bytes16(select, 2)) / 2);
      length += file.size() + static_cast<std::size_t>(sqlite3_column_int64(select, 10));
    }
    Check(length > kRows * kFile.size());
    sqlite3_finalize(select);
    sqlite3_close(connection);
  }
}
BENCHMARK(InsertAndWalkByHand)->ArgName("transaction")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
