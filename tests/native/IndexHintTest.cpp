#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/DocumentFile.h"
#include "tests/support/ProgramTest.h"

namespace {

constexpr TextView kDocument = u"C:\\Teil.ipt";
constexpr TextView kRun = u"/RI C:\\Teil.ipt";

class IndexHintTest : public TProgramTest {};

}  // namespace

TEST_F(IndexHintTest, TheFirstTextOfThatNameGoesAndTheFileIsWrittenOnlyThen) {
  const std::string hint = TextProperty("IndexHinweis", "alt");
  const std::string number = R"({"name": "IndexHinweis", "type": "integer", "value": 1})";
  const std::string other = TextProperty("A", "1");
  struct {
    const char* What;
    std::string Properties;
    std::vector<std::string> Looked;  // per property: "v" value read, "vn" name read as well
    bool Removed;
    std::size_t Left;
  } const cases[] = {
      {"first", hint + "," + other, {"vn"}, true, 1},
      {"last", other + "," + hint, {"vn", "vn"}, true, 1},
      {"twice", hint + "," + other + "," + hint, {"vn"}, true, 2},
      {"as a number", number + "," + hint, {"v", "vn"}, true, 1},
      {"only as a number", number, {"v"}, false, 1},
      {"in other case", TextProperty("indexhinweis", "alt"), {"vn"}, false, 1},
      {"absent", other, {"vn"}, false, 1},
      {"no properties", "", {}, false, 0},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.What);
    const std::string before = DocumentWith(test.Properties);
    WriteFile(kDocument, before);
    EXPECT_EQ(Run(kRun), (std::vector<std::string>{
                             "0 text \"Indexhinweis wird entfernt...\"",
                             "0 show 490,477 300x70",
                             "0 paint \"Indexhinweis wird entfernt...\"",
                             "1500 quit",
                         }));

    std::vector<std::string> expected = {"OpenDocument", "PropertySets", "Item", "Count"};
    const auto access = [&expected](const char* member) {
      expected.insert(expected.end(), {"PropertySets", "Item", "Item", member});
    };
    for (const std::string& looked : test.Looked) {
      access("Value");
      if (looked == "vn") access("Name");
    }
    if (test.Removed) {
      access("Delete");
      expected.insert(expected.end(), {"PropertySets", "WritePropertiesToFile"});
    }
    expected.emplace_back("CloseDocument");
    std::vector<std::string> members;
    for (const std::string& call : Calls()) {
      const std::size_t start = call.find('.') + 1;
      members.push_back(call.substr(start, call.find_first_of(" (", start) - start));
    }
    EXPECT_EQ(members, expected);
    EXPECT_EQ(ReadFile(kDocument) == before, !test.Removed);
    EXPECT_EQ(simulator::ParseDocument(ReadFile(kDocument)).PropertySets[3].Properties.size(), test.Left);
    EXPECT_EQ(LiveObjects(), 0);
  }
}
