// The SQL layer. The first line of an input makes a table's name, the others are a script. Every name works
// unquoted, the rewriting changes only names and the type, and a script can do no more than fail.

#include <sqlite3.h>

#include <algorithm>

#include "database/Query.h"
#include "database/Session.h"
#include "database/SqlScript.h"
#include "headless/Machine.h"
#include "tests/fuzz/Fuzz.h"

using fuzz::Require;

namespace {

int progress = 0;

int StopLongOnes(void*) {
  return ++progress > 30 ? 1 : 0;
}

/// Statements may run for ever, or ask for any amount of memory: that is not what is looked for.
int LimitConnection(sqlite3* connection, char**, const sqlite3_api_routines*) {
  constexpr int kSteps = 1000;
  sqlite3_progress_handler(connection, kSteps, StopLongOnes, nullptr);
  sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, 50'000);
  sqlite3_limit(connection, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 20);
  return SQLITE_OK;
}

/// False when the engine refused it.
bool Run(TQuery& query, const UnicodeString& sql, bool open = true) {
  progress = 0;
  query.SQL.Clear();
  query.SQL.Add(sql);
  try {
    open ? query.Open() : query.Execute();
    for (; !query.Eof(); query.Next()) static_cast<void>(query.Field(u"Wert").AsText());
    if (open) query.InsertRecord({TextView(u"x")});
    return true;
  } catch (const EError& error) {
    Require(error.Kind() == TErrorKind::Sql, "the kind of an error");
    return false;
  }
}

bool Contains(std::string_view sql, std::string_view word) {
  const auto isSame = [](char a, char b) { return (a | 0x20) == (b | 0x20); };
  return std::search(sql.begin(), sql.end(), word.begin(), word.end(), isSame) != sql.end();
}

/// Without names to rewrite a script stays as it is, and a rewritten one has none left.
void CheckRewriting(std::string_view sql) {
  if (Contains(sql, "autoinc")) return;
  const std::string script = database::EngineScript(sql);
  Require(database::EngineScript(script) == script, "no name is left");
  Require(Contains(sql, "##") || script == sql, "nothing else changes");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int prepared = sqlite3_auto_extension(reinterpret_cast<void (*)()>(LimitConnection));
  const std::string_view input = fuzz::Bytes(data, size), line = fuzz::Split(input, '\n').front();
  const std::string_view script = input.substr(std::min(line.size() + 1, size));
  CheckRewriting(script);

  headless::Machine().Root = "/";
  sqlite3_hard_heap_limit64(0);  // which the script before may have lowered
  TSession session;
  session.Open();
  TDatabase database(session);
  database.Open();
  TQuery query(database);
  // Without what ends a name, and two non-characters that the engine changes.
  UnicodeString name = u"##" + fuzz::AnyText(line);
  std::erase_if(name, [](char16_t c) { return TextView(u" \t\r\n\f\v;\0\xFFFE\xFFFF", 10).find(c) < 10; });
  Require(
      prepared == SQLITE_OK && Run(query, u"CREATE TABLE ##T (Wert Char(5), ID AutoInc);SELECT * FROM ##T"),
      "a table");
  if (sqlite3_stricmp(Utf8FromText(name).c_str(), "##T") != 0) {
    const UnicodeString select = u"SELECT * FROM " + name;
    Require(Run(query, u"CREATE TABLE " + name + u" (Wert Char(5), ID AutoInc);" + select), "any name");
    query.InsertRecord({name});
    Require(Run(query, select) && query.RowCount() == 3, "its rows");
    query.GoTo(1);
    Require(query.Field(u"wert").AsText() == name && query.Field(u"id").AsInteger() == 2, "their values");
    Require(Run(query, u"SELECT * FROM ##T") && query.RowCount() == 2, "others are left alone");
  }
  Run(query, fuzz::AnyText(script), size % 4 != 0);
  return 0;
}
