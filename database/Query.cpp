#include "database/Query.h"

#include <sqlite3.h>

#include <string>
#include <utility>

#include "database/SqlScript.h"

using database::EngineError;
using database::SqlError;

namespace {

/// The table that a SELECT's first column comes from, with its schema; empty when it comes from none.
std::string TableOf(sqlite3_stmt* select) {
  const char* const schema = ::sqlite3_column_database_name(select, 0);
  const char* const table = ::sqlite3_column_table_name(select, 0);
  if (schema == nullptr || table == nullptr) return {};
  return database::QuotedName(schema) + "." + database::QuotedName(table);
}

/// Whether two SELECTs have the same columns of the same table.
bool HaveSameColumns(sqlite3_stmt* a, sqlite3_stmt* b) {
  const int columns = ::sqlite3_column_count(a);
  if (::sqlite3_column_count(b) != columns) return false;
  for (int i = 0; i < columns; ++i) {
    if (::sqlite3_stricmp(::sqlite3_column_table_name(a, i), ::sqlite3_column_table_name(b, i)) != 0 ||
        ::sqlite3_stricmp(::sqlite3_column_origin_name(a, i), ::sqlite3_column_origin_name(b, i)) != 0) {
      return false;
    }
  }
  return true;
}

/// The column of a SELECT that holds its table's key; -1 when there is none.
int KeyColumn(sqlite3* connection, sqlite3_stmt* select) {
  for (int i = ::sqlite3_column_count(select) - 1; i >= 0; --i) {
    const char* type = nullptr;
    int isKey = 0;
    ::sqlite3_table_column_metadata(
        connection, ::sqlite3_column_database_name(select, i), ::sqlite3_column_table_name(select, i),
        ::sqlite3_column_origin_name(select, i), &type, nullptr, nullptr, &isKey, nullptr);
    if (isKey != 0 && ::sqlite3_stricmp(type, "INTEGER") == 0) return i;
  }
  return -1;
}

int Bind(sqlite3_stmt* statement, int parameter, const TSqlValue& value) {
  struct TBinder {
    sqlite3_stmt* Statement;
    int Parameter;

    int operator()(std::nullptr_t) const { return ::sqlite3_bind_null(Statement, Parameter); }
    int operator()(std::int64_t number) const { return ::sqlite3_bind_int64(Statement, Parameter, number); }
    int operator()(bool flag) const { return ::sqlite3_bind_int(Statement, Parameter, flag ? 1 : 0); }
    int operator()(TextView text) const {
      // A null pointer would be a null.
      const char16_t* const characters = text.empty() ? u"" : text.data();
      return ::sqlite3_bind_text64(Statement, Parameter, reinterpret_cast<const char*>(characters),
                                   text.size() * sizeof(char16_t), SQLITE_STATIC, SQLITE_UTF16LE);
    }
  };
  return std::visit(TBinder{statement, parameter}, value);
}

}  // namespace

bool TField::IsNull() const {
  return ::sqlite3_column_type(fQuery.CurrentRow(), fColumn) == SQLITE_NULL;
}

std::int64_t TField::AsInteger() const {
  return ::sqlite3_column_int64(fQuery.CurrentRow(), fColumn);
}

bool TField::AsBoolean() const {
  return AsInteger() != 0;
}

UnicodeString TField::AsText() const {
  sqlite3_stmt* const row = fQuery.CurrentRow();
  // The engine would print the number in UTF-8 and convert that.
  if (::sqlite3_column_type(row, fColumn) == SQLITE_INTEGER) {
    return DecimalText(::sqlite3_column_int64(row, fColumn));
  }
  const auto* const text = static_cast<const char16_t*>(::sqlite3_column_text16(row, fColumn));
  const int bytes = ::sqlite3_column_bytes16(row, fColumn);
  if (text == nullptr) return {};
  return {text, static_cast<std::size_t>(bytes) / sizeof(char16_t)};
}

void TQuery::CheckDatabase() const {
  if (!fDatabase.Active() || !fDatabase.fSession.Active())
    throw SqlError(u"Die Datenbank ist nicht geöffnet.");
}

sqlite3* TQuery::Connection() const {
  return fDatabase.fSession.fConnection.Get();
}

TStatement TQuery::RunScript() {
  Close();
  CheckDatabase();
  if (SQL.Text().find(u'\0') != UnicodeString::npos) {
    throw SqlError(u"Die Anweisung enthält ein unzulässiges Zeichen.");
  }
  const std::string script = database::EngineScript(Utf8FromText(SQL.Text()));
  std::string_view rest = script;
  TStatement last;
  while (TStatement statement = database::Prepare(Connection(), rest, SQL.Text())) {
    const auto run = [this](const TStatement& done) {
      while (database::Step(Connection(), done.Get(), SQL.Text())) {
      }
    };
    if (last) run(last);
    last.Reset();
    if (::sqlite3_column_count(statement.Get()) != 0) {
      last = std::move(statement);
    } else {
      run(statement);
    }
  }
  return last;
}

void TQuery::Open() {
  const TStatement select = RunScript();
  if (!select) throw SqlError(u"Die Anweisung ergibt keine Datensätze:\n\n" + SQL.Text());
  OpenResult(select.Get());
  Notify(TQueryChange::Opened);
}

void TQuery::Execute() {
  const TStatement last = RunScript();
  while (last && database::Step(Connection(), last.Get(), SQL.Text())) {
  }
}

void TQuery::OpenResult(sqlite3_stmt* select) {
  const std::string table = TableOf(select);
  TStatement rows;
  if (!table.empty()) rows = PrepareOne("SELECT * FROM " + table + " WHERE rowid>=?1 ORDER BY rowid");
  const int keyColumn = rows ? KeyColumn(Connection(), rows.Get()) : -1;
  if (keyColumn < 0 || !HaveSameColumns(select, rows.Get())) {
    throw SqlError(u"Nur \"SELECT * FROM Tabelle\" ergibt eine Liste von Datensätzen:\n\n" + SQL.Text());
  }
  std::string places = "?";
  for (int i = 1; i < ::sqlite3_column_count(select); ++i) places += ",?";
  TStatement insert = PrepareOne("INSERT INTO " + table + " VALUES(" + places + ")");
  fKeys.clear();
  while (database::Step(Connection(), select, SQL.Text())) {
    fKeys.push_back(::sqlite3_column_int64(select, keyColumn));
  }
  fRow = 0;
  fKeyColumn = keyColumn;
  fLoadedKey.reset();
  fInsertStatement = std::move(insert);
  fRowStatement = std::move(rows);
}

TStatement TQuery::PrepareOne(std::string_view sql) const {
  return database::Prepare(Connection(), sql, SQL.Text());
}

void TQuery::Close() noexcept {
  if (!Active()) return;
  Notify(TQueryChange::Closing);
  fRowStatement.Reset();
  fInsertStatement.Reset();
  if (fInserting) ::sqlite3_exec(Connection(), "COMMIT", nullptr, nullptr, nullptr);
  fInserting = false;
  fKeys = {};
  fRow = 0;
}

void TQuery::Next() noexcept {
  if (!Eof()) ++fRow;
}

TField TQuery::Field(TextView name) {
  if (!Active()) throw SqlError(u"Die Abfrage ist nicht geöffnet.");
  const std::string wanted = Utf8FromText(name);
  const int columns = ::sqlite3_column_count(fRowStatement.Get());
  for (int i = 0; i < columns; ++i) {
    if (::sqlite3_stricmp(::sqlite3_column_name(fRowStatement.Get(), i), wanted.c_str()) == 0)
      return {*this, i};
  }
  throw SqlError(u"Das Feld \"" + UnicodeString(name) + u"\" gibt es nicht.");
}

sqlite3_stmt* TQuery::CurrentRow() {
  if (!Active() || Eof()) throw SqlError(u"Es gibt keinen aktuellen Datensatz.");
  const std::int64_t key = fKeys[fRow];
  if (fLoadedKey == key) return fRowStatement.Get();
  // In a walk from front to back the next step usually gives the row; otherwise it is looked up.
  if (fLoadedKey && StepToKey(key)) return fRowStatement.Get();
  ::sqlite3_reset(fRowStatement.Get());
  ::sqlite3_bind_int64(fRowStatement.Get(), 1, key);
  if (!StepToKey(key)) throw SqlError(u"Der aktuelle Datensatz ist gelöscht.");
  return fRowStatement.Get();
}

bool TQuery::StepToKey(std::int64_t key) {
  fLoadedKey.reset();
  if (!database::Step(Connection(), fRowStatement.Get(), SQL.Text())) return false;
  fLoadedKey = ::sqlite3_column_int64(fRowStatement.Get(), fKeyColumn);
  return fLoadedKey == key;
}

/// A transaction that a script has begun stays the script's.
void TQuery::BeginInserting() {
  if (::sqlite3_get_autocommit(Connection()) == 0) return;
  const TStatement begin = PrepareOne("BEGIN");
  database::Step(Connection(), begin.Get(), SQL.Text());
  fInserting = true;
}

void TQuery::InsertRecord(std::initializer_list<TSqlValue> values) {
  if (!Active()) throw SqlError(u"Die Abfrage ist nicht geöffnet.");
  sqlite3_stmt* const insert = fInsertStatement.Get();
  if (values.size() > static_cast<std::size_t>(::sqlite3_bind_parameter_count(insert))) {
    throw SqlError(u"Der Datensatz hat mehr Werte als die Tabelle Spalten.");
  }
  BeginInserting();
  ::sqlite3_reset(fRowStatement.Get());
  fLoadedKey.reset();
  int parameter = 0;
  for (const TSqlValue& value : values) {
    if (Bind(insert, ++parameter, value) != SQLITE_OK) throw EngineError(Connection(), SQL.Text());
  }
  // Reserved first: once the table has the row, nothing can fail any more.
  fKeys.push_back(0);
  try {
    database::Step(Connection(), insert, SQL.Text());
  } catch (...) {
    fKeys.pop_back();
    ::sqlite3_clear_bindings(insert);
    throw;
  }
  ::sqlite3_reset(insert);
  ::sqlite3_clear_bindings(insert);
  fKeys.back() = ::sqlite3_last_insert_rowid(Connection());
  fRow = fKeys.size() - 1;
  Notify(TQueryChange::Inserted);
}
