#pragma once

#include <cstdint>
#include <string_view>

#include "platform/Error.h"
#include "platform/Handle.h"

// The engine's own objects, for the classes of this folder alone.

struct sqlite3;
struct sqlite3_stmt;

namespace database {

/// Waits for statements that are still open, in whatever order their owners go.
void CloseConnection(sqlite3* connection) noexcept;
void CloseStatement(sqlite3_stmt* statement) noexcept;

}  // namespace database

using TConnection = TUniqueHandle<sqlite3*, database::CloseConnection>;
using TStatement = TUniqueHandle<sqlite3_stmt*, database::CloseStatement>;

namespace database {

/// An error that the engine has no part in.
EError SqlError(TextView message);

/// The connection's last error: a sentence of ours, the engine's message, and `sql`, which led to it.
EError EngineError(sqlite3* connection, TextView sql);

/// The first statement in `script`, which then holds the rest; none when nothing but blanks and comments is
/// left. Errors show `sql`.
TStatement Prepare(sqlite3* connection, std::string_view& script, TextView sql);

/// Steps to the next row; false behind the last one, and for a statement without rows when it is done.
bool Step(sqlite3* connection, sqlite3_stmt* statement, TextView sql);

}  // namespace database
