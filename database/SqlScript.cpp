#include "database/SqlScript.h"

#include <sqlite3.h>

#include <algorithm>

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";
constexpr std::string_view kGlobalNameEnds = " \t\r\n\f\v;";
constexpr std::string_view kKeyType = "AutoInc";

enum class TTokenKind {
  Gap,         ///< blanks, or a comment
  GlobalName,  ///< "##" and all that follows up to a blank, a semicolon or the end of the text
  Word,        ///< keyword, name or number
  Quoted,      ///< a text or a name in quotes
  Sign,        ///< any other single character
};

struct TToken {
  TTokenKind Kind;
  std::string_view Text;
};

/// Bytes of characters beyond ASCII belong to names.
bool IsWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

/// The character that ends a quoted text or name that begins with `c`; none if nothing quoted begins so.
char ClosingQuote(char c) {
  switch (c) {
    case '\'':
    case '"':
    case '`':
      return c;
    case '[':
      return ']';
    default:
      return '\0';
  }
}

/// The length of the quoted text or name at the start; a doubled quote does not close it.
std::size_t QuotedLength(std::string_view sql) {
  const char quote = ClosingQuote(sql.front());
  for (std::size_t i = 1; i < sql.size(); ++i) {
    if (sql[i] != quote) continue;
    if (quote == ']' || i + 1 == sql.size() || sql[i + 1] != quote) return i + 1;
    ++i;
  }
  return sql.size();
}

std::size_t WordLength(std::string_view sql) {
  return static_cast<std::size_t>(std::ranges::find_if_not(sql, IsWordCharacter) - sql.begin());
}

/// The token at the start of a text that is not empty.
TToken FirstToken(std::string_view sql) {
  const std::size_t blanks = sql.find_first_not_of(kBlanks);
  if (blanks > 0) return {TTokenKind::Gap, sql.substr(0, blanks)};
  if (sql.starts_with("--")) return {TTokenKind::Gap, sql.substr(0, sql.find('\n'))};
  if (sql.starts_with("/*")) {
    const std::size_t end = sql.find("*/", 2);
    return {TTokenKind::Gap, end == std::string_view::npos ? sql : sql.substr(0, end + 2)};
  }
  if (sql.starts_with("##")) {
    return {TTokenKind::GlobalName, sql.substr(0, sql.find_first_of(kGlobalNameEnds))};
  }
  if (ClosingQuote(sql.front()) != '\0') return {TTokenKind::Quoted, sql.substr(0, QuotedLength(sql))};
  if (IsWordCharacter(sql.front())) return {TTokenKind::Word, sql.substr(0, WordLength(sql))};
  return {TTokenKind::Sign, sql.substr(0, 1)};
}

bool IsKeyType(std::string_view word) {
  return word.size() == kKeyType.size() &&
         ::sqlite3_strnicmp(word.data(), kKeyType.data(), static_cast<int>(word.size())) == 0;
}

}  // namespace

namespace database {

std::string EngineScript(std::string_view sql) {
  std::string script;
  // A column's type comes after its name: a column named AutoInc is left alone.
  bool afterName = false;
  while (!sql.empty()) {
    const auto [kind, text] = FirstToken(sql);
    sql.remove_prefix(text.size());
    if (kind == TTokenKind::GlobalName) {
      // A word may end right before it, as in "FROM##T": it must not grow by the schema's name.
      if (!script.empty() && IsWordCharacter(script.back())) script += ' ';
      script.append("temp.").append(QuotedName(text));
    } else if (afterName && kind == TTokenKind::Word && IsKeyType(text)) {
      script += "INTEGER PRIMARY KEY";
    } else {
      script += text;
    }
    if (kind != TTokenKind::Gap) afterName = kind == TTokenKind::Word || kind == TTokenKind::Quoted;
  }
  return script;
}

std::string QuotedName(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) quoted.append(c == '"' ? 2 : 1, c);
  return quoted += '"';
}

}  // namespace database
