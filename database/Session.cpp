#include "database/Session.h"

#include <sqlite3.h>

#include <climits>
#include <utility>

#include "platform/Files.h"

namespace {

/// Texts are stored as they come, in UTF-16, unpaired surrogates in file names included; and not even a large
/// temporary table goes into a file.
constexpr const char* kSettings = "PRAGMA encoding='UTF-16le'; PRAGMA temp_store=MEMORY;";

/// Only one thread uses the connection, so that the engine need not lock each call.
constexpr int kOpenMode =
    SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY | SQLITE_OPEN_NOMUTEX;

/// Statements that would write files (ATTACH, VACUUM INTO) need a second database.
constexpr int kAttachedDatabases = 0;

}  // namespace

void TSession::Open() {
  sqlite3* connection = nullptr;
  const int result = ::sqlite3_open_v2(":memory:", &connection, kOpenMode, nullptr);
  TConnection opened(connection);
  if (result != SQLITE_OK) throw database::EngineError(connection, u"(Verbindungsaufbau)");
  ::sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, kAttachedDatabases);
  if (::sqlite3_exec(connection, kSettings, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw database::EngineError(connection, TextFromUtf8(kSettings));
  }
  fConnection = std::move(opened);
}

void TDatabase::Open() {
  if (!fSession.Active()) throw database::SqlError(u"Die Verbindung zur Datenbank ist nicht geöffnet.");
  if (!FolderExists(Folder)) {
    throw database::SqlError(u"Der Datenbankordner \"" + Folder + u"\" ist nicht vorhanden.");
  }
  fOpen = true;
}

namespace database {

void CloseConnection(sqlite3* connection) noexcept {
  ::sqlite3_close_v2(connection);
}

void CloseStatement(sqlite3_stmt* statement) noexcept {
  ::sqlite3_finalize(statement);
}

EError SqlError(TextView message) {
  return {TErrorKind::Sql, SQLITE_MISUSE, UnicodeString(message)};
}

EError EngineError(sqlite3* connection, TextView sql) {
  UnicodeString message = u"Die Datenbank hat eine Anweisung nicht ausgeführt.\n\n";
  message.append(TextFromUtf8(::sqlite3_errmsg(connection))).append(u"\n\n").append(sql);
  return {TErrorKind::Sql, ::sqlite3_extended_errcode(connection), std::move(message)};
}

TStatement Prepare(sqlite3* connection, std::string_view& script, TextView sql) {
  if (script.size() > INT_MAX) throw SqlError(u"Die Anweisung ist zu lang.");
  // Blanks and comments before the end are a statement of their own, an empty one.
  while (!script.empty()) {
    sqlite3_stmt* statement = nullptr;
    const char* rest = nullptr;
    const int result =
        ::sqlite3_prepare_v2(connection, script.data(), static_cast<int>(script.size()), &statement, &rest);
    if (result != SQLITE_OK) throw EngineError(connection, sql);
    script.remove_prefix(static_cast<std::size_t>(rest - script.data()));
    if (statement != nullptr) return TStatement(statement);
  }
  return {};
}

bool Step(sqlite3* connection, sqlite3_stmt* statement, TextView sql) {
  const int result = ::sqlite3_step(statement);
  if (result == SQLITE_ROW) return true;
  if (result == SQLITE_DONE) return false;
  EError error = EngineError(connection, sql);
  ::sqlite3_reset(statement);
  throw error;
}

}  // namespace database
