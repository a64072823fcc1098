#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "database/Session.h"

class TQuery;

/// The statements of a query, line by line.
class TSqlLines {
 public:
  void Clear() { fText.clear(); }
  void Add(TextView line) { fText.append(line).append(u"\n"); }
  const UnicodeString& Text() const noexcept { return fText; }

 private:
  UnicodeString fText;
};

/// A value on its way into a table. Texts are not copied: they must live until the call has returned.
using TSqlValue = std::variant<std::nullptr_t, std::int64_t, bool, TextView>;

/// A column of the query's current row. It follows the cursor, so that a walk asks for it once, and is valid
/// until the query closes. Reading it where there is no current row throws EError of kind Sql.
class TField {
 public:
  bool IsNull() const;
  std::int64_t AsInteger() const;  ///< 0 for null and for a text that does not begin with a number
  bool AsBoolean() const;          ///< false for null
  UnicodeString AsText() const;    ///< empty for null; a Boolean gives 0 or 1

 private:
  friend class TQuery;
  TField(TQuery& query, int column) : fQuery(query), fColumn(column) {}

  TQuery& fQuery;
  int fColumn;
};

enum class TQueryChange {
  Opened,
  Inserted,
  Closing,  ///< the result is still there
};

/// SQL statements, and the result of the last one as a list of rows with a cursor. The result is live: its
/// rows are those of one table with an AutoInc column, as they are now, and new ones can be inserted. The
/// database outlives the query.
class TQuery {
 public:
  explicit TQuery(TDatabase& database) : fDatabase(database) {}
  ~TQuery() { Close(); }
  TQuery(const TQuery&) = delete;
  TQuery& operator=(const TQuery&) = delete;

  TSqlLines SQL;

  /// For the one control that shows the result. Must not throw when the result closes.
  std::function<void(TQueryChange change)> OnChange;

  /// Runs all statements. The last one, "SELECT * FROM" one table, with whatever follows, gives the result;
  /// the cursor is on its first row. A result that was open is closed first. Throws EError of kind Sql, and
  /// the query is then closed; what the earlier statements have done stays. What OnChange throws leaves it
  /// open.
  void Open();
  /// Runs all statements and has no result. Closes and throws like Open.
  void Execute();
  void Close() noexcept;
  bool Active() const noexcept { return static_cast<bool>(fRowStatement); }

  std::size_t RowCount() const noexcept { return fKeys.size(); }
  /// The current row's position in the result, from 0; RowCount() after the last one.
  std::size_t Row() const noexcept { return fRow; }
  bool Eof() const noexcept { return fRow >= fKeys.size(); }
  void First() noexcept { fRow = 0; }
  /// At the end it stays there.
  void Next() noexcept;
  void GoTo(std::size_t row) noexcept { fRow = row; }

  /// Throws EError of kind Sql when the query is closed or has no such column. The name's case does not
  /// matter.
  TField Field(TextView name);

  /// A new row from values in the order of the table's columns; those that are not given are null, and a null
  /// AutoInc numbers itself. The new row is the result's last one and becomes the current one, even if the
  /// SELECT's condition excludes it. Throws EError of kind Sql.
  void InsertRecord(std::initializer_list<TSqlValue> values);

 private:
  friend class TField;

  void CheckDatabase() const;
  sqlite3* Connection() const;
  /// Runs the statements; the last one is returned instead when it has columns.
  TStatement RunScript();
  void OpenResult(sqlite3_stmt* select);
  /// fRowStatement, on the current row.
  sqlite3_stmt* CurrentRow();
  bool StepToKey(std::int64_t key);
  TStatement PrepareOne(std::string_view sql) const;
  void BeginInserting();
  void Notify(TQueryChange change) const {
    if (OnChange) OnChange(change);
  }

  TDatabase& fDatabase;
  std::vector<std::int64_t> fKeys;  // of the result's rows, in their order
  std::size_t fRow = 0;
  TStatement fRowStatement;                // from a key on, in the order of keys
  int fKeyColumn = 0;                      // of fRowStatement
  std::optional<std::int64_t> fLoadedKey;  // of the row that fRowStatement stands on
  TStatement fInsertStatement;
  bool fInserting = false;  // since the first new row: one transaction instead of one for each row
};
