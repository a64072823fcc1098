#pragma once

#include <string>
#include <string_view>

// SQL as the program writes it, in UTF-8, and as the engine understands it.

namespace database {

/// Replaces what the engine does not know: global temporary names stand for tables of the engine's own
/// temporary schema, whatever characters they consist of, and the column type AutoInc for a key that numbers
/// itself. Everything else stays byte for byte.
std::string EngineScript(std::string_view sql);

/// `name` in double quotes, so that any characters in it are taken as they are.
std::string QuotedName(std::string_view name);

}  // namespace database
