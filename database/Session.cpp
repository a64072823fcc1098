#include "database/Session.h"

#include <sqlite3.h>

#include <utility>

#include "platform/Files.h"

namespace {

/// Texts are stored as they come, in UTF-16, unpaired surrogates in file names included; and not even a large
/// temporary table goes into a file.
constexpr const char* kSettings = "PRAGMA encoding='UTF-16le'; PRAGMA temp_store=MEMORY;";

/// Statements that would write files (ATTACH, VACUUM INTO) need a second database.
constexpr int kAttachedDatabases = 0;

}  // namespace

void TSession::Open() {
  sqlite3* connection = nullptr;
  const int result = ::sqlite3_open_v2(
      ":memory:", &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY, nullptr);
  TConnection opened(connection);
  if (result != SQLITE_OK) throw database::EngineError(connection, u"(Verbindungsaufbau)");
  ::sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, kAttachedDatabases);
  if (::sqlite3_exec(connection, kSettings, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw database::EngineError(connection, TextFromUtf8(kSettings));
  }
  fConnection = std::move(opened);
}

void TSession::Close() noexcept {
  fConnection.Reset();
}

void TDatabase::Open() {
  if (!fSession.Active()) throw database::SqlError(u"Die Verbindung zur Datenbank ist nicht geöffnet.");
  if (!FolderExists(Folder)) {
    throw database::SqlError(u"Der Datenbankordner \"" + Folder + u"\" ist nicht vorhanden.");
  }
  fOpen = true;
}
