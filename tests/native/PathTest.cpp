#include "platform/Path.h"

#include <gtest/gtest.h>

TEST(PathTest, ExtensionFollowsLastSeparator) {
  struct {
    TextView Name;
    TextView Extension;
    TextView Changed;
  } const cases[] = {
      {u"X:\\Alt\\Teil.ipt", u".ipt", u"X:\\Alt\\Teil.zip"},
      {u"X:\\V1.2\\Teil", u"", u"X:\\V1.2\\Teil.zip"},
      {u"X:Teil", u"", u"X:Teil.zip"},
      {u"Teil.a.IPT", u".IPT", u"Teil.a.zip"},
      {u"X:\\Teil.", u".", u"X:\\Teil.zip"},
      {u"X:\\.ipt", u".ipt", u"X:\\.zip"},
      {u"", u"", u".zip"},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(FileExtension(test.Name), test.Extension);
    EXPECT_EQ(ChangeFileExtension(test.Name, u".zip"), test.Changed);
  }
}
