#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// SQL as the program writes it, in UTF-8, and what the engine understands of it.

enum class TSqlTokenKind {
  End,
  GlobalName,  ///< "##" and all that follows up to a blank, a semicolon or the end of the text
  Word,        ///< keyword, name or number
  Quoted,      ///< a text or a name in quotes
  Sign,        ///< any other single character
};

struct TSqlToken {
  TSqlTokenKind Kind;
  std::string_view Text;
};

/// Takes SQL apart from front to back; blanks and comments are passed over. The text must outlive the scanner
/// and its tokens.
class TSqlScanner {
 public:
  explicit TSqlScanner(std::string_view sql) : fSql(sql) {}

  TSqlToken Next();

  /// Where the last token begins in the text, and where the rest behind it does.
  std::size_t TokenStart() const noexcept { return fStart; }
  std::size_t RestStart() const noexcept { return fNext; }

 private:
  void SkipBlanksAndComments();
  std::size_t EndOfToken(TSqlTokenKind kind) const;

  std::string_view fSql;
  std::size_t fStart = 0;
  std::size_t fNext = 0;
};

namespace database {

/// Equal without regard to the case of ASCII letters, as the engine compares keywords and names.
bool SameWord(std::string_view a, std::string_view b);

/// Replaces what the engine has no notion of: global temporary names stand for tables of the engine's own
/// temporary schema, whatever characters they consist of, and the column type AutoInc for a key that numbers
/// itself. Everything else stays byte for byte.
std::string EngineScript(std::string_view sql);

}  // namespace database
