#pragma once

#include "database/Engine.h"
#include "platform/Text.h"

/// The connection to the SQL engine, which works in this process's memory alone. Temporary tables live in it
/// until it closes. It outlives its databases.
class TSession {
 public:
  /// Throws EError of kind Sql.
  void Open();
  void Close() noexcept;
  bool Active() const noexcept { return static_cast<bool>(fConnection); }

 private:
  friend class TQuery;
  TConnection fConnection;
};

/// What a session shows of one folder. The folder only has to be there: nothing of ours is ever written into
/// it, as the tables of this program are temporary.
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
