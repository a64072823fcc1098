#include "database/Query.h"

#include <sqlite3.h>

#include <optional>
#include <string>
#include <utility>

#include "database/Session.h"
#include "database/SqlScript.h"

using database::EngineError;
using database::SqlError;

namespace {

/// A SELECT taken apart: what it says of one table, and which one.
struct TLiveSelect {
  std::string Table;  ///< with its schema
  std::string Rest;   ///< everything behind "SELECT *"
};

/// Nothing when the statement is no "SELECT * FROM" a table.
std::optional<TLiveSelect> ParseLiveSelect(std::string_view sql) {
  TSqlScanner scanner(sql);
  if (!database::SameWord(scanner.Next().Text, "SELECT") || scanner.Next().Text != "*") return std::nullopt;
  const std::size_t rest = scanner.RestStart();
  if (!database::SameWord(scanner.Next().Text, "FROM")) return std::nullopt;
  const TSqlToken name = scanner.Next();
  if (name.Kind != TSqlTokenKind::Word && name.Kind != TSqlTokenKind::Quoted) return std::nullopt;
  std::string table(name.Text);
  // The name so far was the schema's.
  if (scanner.Next().Text == ".") table.append(".").append(scanner.Next().Text);
  return TLiveSelect{std::move(table), std::string(sql.substr(rest))};
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
  const std::optional<TLiveSelect> parts = ParseLiveSelect(::sqlite3_sql(select));
  if (!parts) {
    throw SqlError(u"Nur \"SELECT * FROM Tabelle\" ergibt eine Liste von Datensätzen:\n\n" + SQL.Text());
  }
  TStatement rows = PrepareOne("SELECT rowid,* FROM " + parts->Table + " WHERE rowid>=?1 ORDER BY rowid");
  std::string places = "?";
  for (int i = 1; i < ::sqlite3_column_count(select); ++i) places += ",?";
  TStatement insert = PrepareOne("INSERT INTO " + parts->Table + " VALUES(" + places + ")");
  ReadKeys("SELECT rowid" + parts->Rest);
  fRow = 0;
  fStepping = false;
  fInsertStatement = std::move(insert);
  fRowStatement = std::move(rows);
}

void TQuery::ReadKeys(std::string_view sql) {
  const TStatement keys = PrepareOne(sql);
  fKeys.clear();
  while (database::Step(Connection(), keys.Get(), SQL.Text())) {
    fKeys.push_back(::sqlite3_column_int64(keys.Get(), 0));
  }
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
  for (int i = 1; i < columns; ++i) {
    if (database::SameWord(::sqlite3_column_name(fRowStatement.Get(), i), wanted)) return {*this, i};
  }
  throw SqlError(u"Das Feld \"" + UnicodeString(name) + u"\" gibt es nicht.");
}

sqlite3_stmt* TQuery::CurrentRow() {
  if (!Active() || Eof()) throw SqlError(u"Es gibt keinen aktuellen Datensatz.");
  const std::int64_t key = fKeys[fRow];
  if (fStepping && fLoadedKey == key) return fRowStatement.Get();
  // In a walk from front to back the next step mostly gives the row; otherwise it is looked up.
  if (fStepping && StepToKey(key)) return fRowStatement.Get();
  fStepping = false;
  ::sqlite3_reset(fRowStatement.Get());
  ::sqlite3_bind_int64(fRowStatement.Get(), 1, key);
  if (!StepToKey(key)) throw SqlError(u"Der aktuelle Datensatz ist gelöscht.");
  return fRowStatement.Get();
}

bool TQuery::StepToKey(std::int64_t key) {
  fStepping = false;
  if (!database::Step(Connection(), fRowStatement.Get(), SQL.Text())) return false;
  fLoadedKey = ::sqlite3_column_int64(fRowStatement.Get(), 0);
  fStepping = fLoadedKey == key;
  return fStepping;
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
  fStepping = false;
  int parameter = 0;
  for (const TSqlValue& value : values) {
    if (Bind(insert, ++parameter, value) != SQLITE_OK) throw EngineError(Connection(), SQL.Text());
  }
  // Reserved in front: once the table has the row, nothing can fail any more.
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
