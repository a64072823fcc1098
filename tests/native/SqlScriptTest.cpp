#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "database/Query.h"
#include "database/Session.h"
#include "database/SqlScript.h"
#include "platform/Error.h"
#include "tests/support/TestMachine.h"

namespace {

class SqlScriptTest : public TMachineTest {
 protected:
  SqlScriptTest() {
    fDatabase.Folder = u"C:\\Temp";
    fSession.Open();
    fDatabase.Open();
  }

  /// False when the engine refused the statement.
  bool Run(const UnicodeString& sql, bool open) {
    fQuery.SQL.Clear();
    fQuery.SQL.Add(sql);
    try {
      open ? fQuery.Open() : fQuery.Execute();
      for (; !fQuery.Eof(); fQuery.Next()) static_cast<void>(fQuery.Field(u"Wert").AsText());
      return true;
    } catch (const EError& error) {
      EXPECT_EQ(error.Kind(), TErrorKind::Sql);
      return false;
    }
  }

  UnicodeString Text(std::size_t longest, TextView alphabet) {
    UnicodeString text(fRandom() % (longest + 1), u'\0');
    for (char16_t& c : text) c = alphabet[fRandom() % alphabet.size()];
    return text;
  }

  std::mt19937 fRandom{4711};
  TSession fSession;
  TDatabase fDatabase{fSession};
  TQuery fQuery{fDatabase};
};

}  // namespace

TEST_F(SqlScriptTest, NamesOfAnySortStandForThemselves) {
  for (int round = 0; round < 300; ++round) {
    // Lower case alone: the engine takes names that differ in the case of ASCII letters for one.
    const UnicodeString name = u"##" + Text(16, u"ab1-_.$'\"`[](),=#@?:*/\\%&äß€\xD83D\xDD27");
    const UnicodeString other = u"##" + Text(16, u"ab1-'\"#");
    if (Utf8FromText(name) == Utf8FromText(other)) continue;
    SCOPED_TRACE(Utf8FromText(name + u" / " + other));
    ASSERT_TRUE(Run(u"CREATE TABLE " + name + u" (Wert Char(5), ID AutoInc);CREATE TABLE " + other +
                        u" (Wert Integer);SELECT * FROM " + name,
                    true));
    fQuery.InsertRecord({name});
    ASSERT_TRUE(Run(u"UPDATE " + other + u" SET Wert = 1", false));
    ASSERT_TRUE(Run(u"SELECT * FROM " + name + u"\n", true));
    ASSERT_EQ(fQuery.RowCount(), 1U);
    fQuery.First();
    EXPECT_EQ(Utf8FromText(fQuery.Field(u"wert").AsText()), Utf8FromText(name));
    ASSERT_TRUE(Run(u"SELECT * FROM " + other + u";", true));
    EXPECT_EQ(fQuery.RowCount(), 0U);
    fQuery.Close();
    ASSERT_TRUE(Run(u"DROP TABLE " + other + u" ;DROP TABLE " + name + u";", false));
  }
}

TEST_F(SqlScriptTest, NoStatementBreaksIt) {
  const std::vector<UnicodeString> pieces = {
      u"SELECT", u"*",       u"FROM",    u"##T",         u"##T;",        u"WHERE",       u"Wert",   u"=",
      u"'",      u"\"",      u"'O''x'",  u"--",          u"/*",          u"*/",          u"\n",     u";",
      u"(",      u")",       u",",       u"AutoInc",     u"CREATE",      u"DROP",        u"TABLE",  u"UPDATE",
      u"SET",    u"TRUE",    u"1",       u"NULL",        u"##",          u"INSERT INTO", u"VALUES", u"IF",
      u"EXISTS", u"Boolean", u"Char(5)", u"temp",        u".",           u"[",           u"]",      u"ä",
      u"\xD800", u"BEGIN",   u"COMMIT",  u"DELETE FROM", u"RETURNING *", u"rowid",       u"?1",     u"ATTACH",
      u"PRAGMA", u"VACUUM"};
  int accepted = 0;
  for (int round = 0; round < 4000; ++round) {
    UnicodeString sql = fRandom() % 2 == 0 ? u"SELECT * FROM ##T " : u"";
    for (std::size_t length = fRandom() % 8; length > 0; --length) {
      sql += pieces[fRandom() % pieces.size()] + (fRandom() % 4 == 0 ? u"" : u" ");
    }
    Run(u"CREATE TABLE IF NOT EXISTS ##T (Wert Char(5), ID AutoInc); INSERT INTO ##T VALUES ('x', NULL)",
        false);
    accepted += Run(sql, fRandom() % 3 != 0) ? 1 : 0;
  }
  EXPECT_GT(accepted, 200);
}

TEST_F(SqlScriptTest, OnlyNamesAndTheTypeAreReplaced) {
  struct {
    std::string_view Sql;
    std::string_view Engine;
  } const cases[] = {
      {"", ""},
      {"SELECT * FROM ##A", "SELECT * FROM temp.\"##A\""},
      {"SELECT * FROM##A", "SELECT * FROM temp.\"##A\""},
      {"##A\"B ##;##", "temp.\"##A\"\"B\" temp.\"##\";temp.\"##\""},
      {"'##A' \"##B\" [##C] `##D` -- ##E\n/* ##F */ # #A",
       "'##A' \"##B\" [##C] `##D` -- ##E\n/* ##F */ # #A"},
      {"'it''s ##A' '##B", "'it''s ##A' '##B"},
      {"/* ##A", "/* ##A"},
      {"(AutoInc AUTOINC, \"x\" autoinc, autoinc)",
       "(AutoInc INTEGER PRIMARY KEY, \"x\" INTEGER PRIMARY KEY, autoinc)"},
      {"x AutoIncX 'AutoInc'", "x AutoIncX 'AutoInc'"},
  };
  for (const auto& test : cases) EXPECT_EQ(database::EngineScript(test.Sql), test.Engine);
}
