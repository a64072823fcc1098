#include "export/WorkingTable.h"

void CreateWorkingTable(TQuery& query, TextView userN) {
  const UnicodeString user(userN);
  query.SQL.Clear();
  query.SQL.Add(u"DROP TABLE IF EXISTS ##SA_" + user + u";");
  query.SQL.Add(
      u"CREATE TABLE ##SA_" + user +
      u" (ImgIndex Integer,DoCopy Boolean,Filename Char(200),DisplayName Char(50), IamIndex Integer, DTID "
      u"Integer, Tabelle Char(50),NewID Integer,Parent Integer,NewFilename Char(200), AutoID AutoInc);");
  query.SQL.Add(u"SELECT * FROM ##SA_" + user);
  query.Open();
}

void InsertFile(TQuery& query, const TFileRow& row) {
  constexpr int kNoTable = 0;
  constexpr int kNotRenamed = -1;
  query.InsertRecord({row.ImgIndex, true, row.Filename, row.DisplayName, row.IamIndex, kNoTable, u"",
                      kNotRenamed, row.Parent});
}
