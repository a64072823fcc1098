#pragma once

#include <string_view>

#include "platform/Error.h"
#include "platform/Handle.h"
#include "platform/Text.h"

struct sqlite3;
struct sqlite3_stmt;

namespace database {

/// Waits for statements that are still open, in whatever order their owners go.
void CloseConnection(sqlite3* connection) noexcept;
void CloseStatement(sqlite3_stmt* statement) noexcept;

}  // namespace database

using TConnection = TUniqueHandle<sqlite3*, database::CloseConnection>;
using TStatement = TUniqueHandle<sqlite3_stmt*, database::CloseStatement>;

/// The connection to the SQL engine, which works only in this process's memory. Temporary tables live in it
/// until it closes. It outlives its databases.
class TSession {
 public:
  /// Throws EError of kind Sql.
  void Open();
  void Close() noexcept { fConnection.Reset(); }
  bool Active() const noexcept { return static_cast<bool>(fConnection); }

 private:
  friend class TQuery;
  TConnection fConnection;
};

/// What a session shows of one folder. The folder only has to exist: nothing is ever written into it, as the
/// tables of this program are temporary.
class TDatabase {
 public:
  explicit TDatabase(TSession& session) : fSession(session) {}

  UnicodeString Folder;

  /// Throws EError of kind Sql when there is no such folder or the session is closed.
  void Open();
  void Close() noexcept { fOpen = false; }
  bool Active() const noexcept { return fOpen; }

 private:
  friend class TQuery;
  TSession& fSession;
  bool fOpen = false;
};

// The engine's calls, for this folder only.
namespace database {

/// An error that does not come from the engine.
EError SqlError(TextView message);

/// The connection's last error: a German sentence, the engine's message, and `sql`, which led to it.
EError EngineError(sqlite3* connection, TextView sql);

/// The first statement in `script`, which then holds the rest; none when only blanks and comments are left.
/// Errors show `sql`.
TStatement Prepare(sqlite3* connection, std::string_view& script, TextView sql);

/// Steps to the next row; false after the last one, and for a statement without rows when it is done.
bool Step(sqlite3* connection, sqlite3_stmt* statement, TextView sql);

}  // namespace database
