#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database/Query.h"
#include "database/Session.h"
#include "platform/Error.h"
#include "platform/Files.h"
#include "platform/System.h"

// The SQL layer with the statements that the program writes, on both builds of the engine.

namespace {

class DatabaseContract : public testing::Test {
 protected:
  void SetUp() override {
    Database.Folder = EnvironmentVariable(u"TEMP") + u"\\Datenbank ä";
    ASSERT_TRUE(CreateFolders(Database.Folder));
    Session.Open();
    Database.Open();
  }

  void SetSql(const std::vector<UnicodeString>& lines) {
    Query.SQL.Clear();
    for (const UnicodeString& line : lines) Query.SQL.Add(line);
  }
  void Open(const std::vector<UnicodeString>& lines) {
    SetSql(lines);
    Query.Open();
  }
  void OpenTable(const UnicodeString& name) {
    Open({u"DROP TABLE IF EXISTS " + name + u";",
          u"CREATE TABLE " + name + u" (Zahl Integer,Marke Boolean,Text Char(5), ID AutoInc);",
          u"SELECT * FROM " + name});
  }
  UnicodeString ErrorOf(const std::vector<UnicodeString>& lines) {
    try {
      Open(lines);
    } catch (const EError& error) {
      EXPECT_EQ(error.Kind(), TErrorKind::Sql);
      EXPECT_FALSE(Query.Active());
      return error.Message();
    }
    return u"";
  }
  /// Each row as "Zahl Marke Text ID", nulls as "-".
  std::vector<UnicodeString> Rows() {
    std::vector<UnicodeString> rows;
    for (Query.First(); !Query.Eof(); Query.Next()) {
      UnicodeString& row = rows.emplace_back();
      for (const TextView name : {u"ZAHL", u"marke", u"Text", u"Id"}) {
        const TField field = Query.Field(name);
        row.append(row.empty() ? u"" : u" ").append(field.IsNull() ? u"-" : field.AsText());
      }
    }
    return rows;
  }
  using TRows = std::vector<UnicodeString>;

  TSession Session;
  TDatabase Database{Session};
  TQuery Query{Database};
};

}  // namespace

TEST_F(DatabaseContract, AcceptsAnyMachineName) {
  const std::vector<UnicodeString> names = {
      u"",    u"VM",   u"PC-01", u"BÜRO-ÄÖß",   u"A.B", u"1PC", u"O'NEIL", u"A\"B", u"A`B", u"[A]",
      u"--A", u"A(B)", u"A,B",   u"\U0001F527", u"#",   u"##",  u"A##B",   u"?1",   u":A",  u"@A",
  };
  for (std::size_t i = 0; i < names.size(); ++i) {
    OpenTable(u"##SA_" + names[i]);
    Query.InsertRecord({static_cast<std::int64_t>(i), true, names[i]});
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    SetSql({u"UPDATE ##SA_" + names[i] + u" SET MARKE = FALSE", u"Where ID = 1"});
    Query.Execute();
    Open({u"select * from ##sa_" + names[i]});
    const UnicodeString expected = DecimalText(static_cast<std::int64_t>(i)) + u" 0 " + names[i] + u" 1";
    EXPECT_EQ(Rows(), TRows{expected}) << Utf8FromText(names[i]);
  }
}

TEST_F(DatabaseContract, InsertsByPositionAndReadsByName) {
  OpenTable(u"##SA_VM");
  EXPECT_EQ(Query.RowCount(), 0U);
  EXPECT_TRUE(Query.Eof());
  EXPECT_THROW(Query.Field(u"ID").AsInteger(), EError);

  const UnicodeString longText(300, u'ä');
  const UnicodeString half = u"a\xD800.";  // a file may be called so
  Query.InsertRecord({94, true, longText});
  Query.InsertRecord({-1, false, u""});
  Query.InsertRecord({nullptr, nullptr, half, 7});
  const TField id = Query.Field(u"iD");
  EXPECT_EQ(id.AsInteger(), 7) << "the new row is the current one";
  Query.InsertRecord({});
  EXPECT_EQ(id.AsInteger(), 8);
  EXPECT_THROW(Query.InsertRecord({1, true, u"", 9, 5}), EError) << "more values than columns";
  EXPECT_THROW(Query.InsertRecord({1, true, u"", 7}), EError) << "a key that is taken";

  EXPECT_EQ(Query.RowCount(), 4U);
  EXPECT_EQ(Rows(), (TRows{u"94 1 " + longText + u" 1", u"-1 0  2", u"- - " + half + u" 7", u"- - - 8"}));
  EXPECT_TRUE(Query.Eof());
  Query.GoTo(2);
  EXPECT_EQ(Query.Field(u"Text").AsText(), half);
  EXPECT_FALSE(Query.Field(u"Marke").AsBoolean());
  Query.GoTo(0);
  EXPECT_TRUE(Query.Field(u"Marke").AsBoolean());
  EXPECT_EQ(Query.Field(u"Text").AsInteger(), 0);
  EXPECT_THROW(Query.Field(u"Preis"), EError);
}

TEST_F(DatabaseContract, AcceptsSelectVariants) {
  OpenTable(u"##T");
  for (const std::int64_t number : {30, 10, 20}) Query.InsertRecord({number, true, u"AutoInc ##T; -- TRUE"});
  struct {
    std::vector<UnicodeString> Lines;
    TextView Keys;
  } const cases[] = {
      {{u"SELECT", u" * FROM ##T", u"ORDER BY Zahl"}, u"231"},
      {{u"SELECT * -- was's gibt", u"FROM ##T WHERE Marke = TRUE AND ID > 1;"}, u"23"},
      {{u"SELECT * FROM ##T Where Text = 'AutoInc ##T; -- TRUE' order by ID desc"}, u"321"},
      {{u"SELECT * FROM ##T;", u"/* dann */ SELECT * FROM ##T WHERE Zahl = 20;;"}, u"3"},
      {{u"SELECT * FROM temp.\"##T\" WHERE Text LIKE '%''%'"}, u""},
  };
  for (const auto& test : cases) {
    Open(test.Lines);
    UnicodeString keys;
    for (const TField id = Query.Field(u"ID"); !Query.Eof(); Query.Next()) keys += id.AsText();
    EXPECT_EQ(keys, test.Keys) << Utf8FromText(Query.SQL.Text());
  }
}

TEST_F(DatabaseContract, ErrorsNameStatementAndReason) {
  OpenTable(u"##T");
  Query.InsertRecord({1});
  struct {
    std::vector<UnicodeString> Lines;
    TextView Message;  ///< a part of it
  } const cases[] = {
      {{u"SELECT * FROM ##FEHLT"}, u"no such table"},
      {{u"SELEKT ä"}, u"syntax error"},
      {{u"UPDATE ##T SET Zahl = 2"}, u"keine Datensätze"},
      {{u""}, u"keine Datensätze"},
      {{u"SELECT COUNT(*) FROM ##T"}, u"Nur \"SELECT * FROM Tabelle\""},
      {{u"SELECT ID, Zahl, Marke, Text FROM ##T"}, u"Nur \"SELECT * FROM Tabelle\""},
      {{u"ATTACH 'C:\\Temp\\Datei.db' AS D"}, u"too many attached databases"},
  };
  for (const auto& test : cases) {
    const UnicodeString message = ErrorOf(test.Lines);
    EXPECT_TRUE(message.find(test.Message) != UnicodeString::npos) << Utf8FromText(message);
    EXPECT_TRUE(message.find(test.Lines[0]) != UnicodeString::npos) << Utf8FromText(message);
  }
  Open({u"SELECT * FROM ##T"});
  EXPECT_EQ(Rows(), TRows{u"2 - - 1"}) << "what an error has left";
}

TEST_F(DatabaseContract, TablesEndWithTheSession) {
  OpenTable(u"##T");
  Query.Close();
  EXPECT_THROW(Query.InsertRecord({1}), EError);
  EXPECT_EQ(ErrorOf({u"SELECT * FROM ##T"}), u"");
  Query.Close();
  Session.Close();
  EXPECT_NE(ErrorOf({u"SELECT * FROM ##T"}), u"");
  Session.Open();
  EXPECT_NE(ErrorOf({u"SELECT * FROM ##T"}), u"");
}
