#include "database/SqlScript.h"

#include <algorithm>

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f\v";

char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Bytes of characters beyond ASCII belong to names.
bool IsWordCharacter(char c) {
  return (LowerCase(c) >= 'a' && LowerCase(c) <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

/// The character that ends a quoted text or name which begins with `c`; none: nothing quoted begins so.
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

TSqlTokenKind KindOf(std::string_view text) {
  if (text.empty()) return TSqlTokenKind::End;
  if (text.starts_with("##")) return TSqlTokenKind::GlobalName;
  if (ClosingQuote(text.front()) != '\0') return TSqlTokenKind::Quoted;
  return IsWordCharacter(text.front()) ? TSqlTokenKind::Word : TSqlTokenKind::Sign;
}

/// Behind the closing quote of a text or name that begins at `start`; a doubled quote does not close it.
std::size_t EndOfQuoted(std::string_view sql, std::size_t start) {
  const char quote = ClosingQuote(sql[start]);
  for (std::size_t i = start + 1; i < sql.size(); ++i) {
    if (sql[i] != quote) continue;
    if (quote == ']' || i + 1 == sql.size() || sql[i + 1] != quote) return i + 1;
    ++i;
  }
  return sql.size();
}

std::string QuotedName(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) quoted.append(c == '"' ? 2 : 1, c);
  return quoted += '"';
}

}  // namespace

void TSqlScanner::SkipBlanksAndComments() {
  for (;;) {
    fNext = std::min(fSql.find_first_not_of(kBlanks, fNext), fSql.size());
    const std::string_view rest = fSql.substr(fNext);
    if (rest.starts_with("--")) {
      fNext += std::min(rest.find('\n'), rest.size());
    } else if (rest.starts_with("/*")) {
      const std::size_t end = rest.find("*/", 2);
      fNext += end == std::string_view::npos ? rest.size() : end + 2;
    } else {
      return;
    }
  }
}

std::size_t TSqlScanner::EndOfToken(TSqlTokenKind kind) const {
  switch (kind) {
    case TSqlTokenKind::GlobalName:
      return std::min(fSql.find_first_of(" \t\r\n\f\v;", fStart), fSql.size());
    case TSqlTokenKind::Word: {
      const auto* const end = std::find_if_not(fSql.begin() + fStart, fSql.end(), IsWordCharacter);
      return static_cast<std::size_t>(end - fSql.begin());
    }
    case TSqlTokenKind::Quoted:
      return EndOfQuoted(fSql, fStart);
    case TSqlTokenKind::End:
      return fStart;
    case TSqlTokenKind::Sign:
      break;
  }
  return fStart + 1;
}

TSqlToken TSqlScanner::Next() {
  SkipBlanksAndComments();
  fStart = fNext;
  const TSqlTokenKind kind = KindOf(fSql.substr(fStart));
  fNext = EndOfToken(kind);
  return {kind, fSql.substr(fStart, fNext - fStart)};
}

namespace database {

bool SameWord(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, LowerCase, LowerCase);
}

std::string EngineScript(std::string_view sql) {
  std::string script;
  std::size_t copied = 0;
  TSqlScanner scanner(sql);
  const auto replaceToken = [&](std::string_view text) {
    script.append(sql, copied, scanner.TokenStart() - copied).append(text);
    copied = scanner.RestStart();
  };
  // A column's type stands behind its name: a column of this name is left alone.
  bool behindName = false;
  for (TSqlToken token = scanner.Next(); token.Kind != TSqlTokenKind::End; token = scanner.Next()) {
    if (token.Kind == TSqlTokenKind::GlobalName) {
      // A word may end right in front of it, as in "FROM##T": it must not grow by the schema's name.
      const bool behindWord = scanner.TokenStart() > 0 && IsWordCharacter(sql[scanner.TokenStart() - 1]);
      replaceToken((behindWord ? " temp." : "temp.") + QuotedName(token.Text));
    }
    const bool isWord = token.Kind == TSqlTokenKind::Word;
    if (behindName && isWord && SameWord(token.Text, "AutoInc")) replaceToken("INTEGER PRIMARY KEY");
    behindName = isWord || token.Kind == TSqlTokenKind::Quoted;
  }
  return script.append(sql.substr(copied));
}

}  // namespace database
