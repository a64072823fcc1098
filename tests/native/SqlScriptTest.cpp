#include "database/SqlScript.h"

#include <gtest/gtest.h>

TEST(SqlScriptTest, ReplacesOnlyTableNamesAndKeyType) {
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
