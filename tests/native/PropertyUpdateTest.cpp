#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/DocumentFile.h"
#include "tests/support/ProgramTest.h"

namespace {

constexpr TextView kDocument = u"C:\\Projekt\\Teil ä.ipt";

/// "a=1;b=2" piece by piece.
std::vector<std::string> Pieces(const std::string& text) {
  std::vector<std::string> pieces;
  for (std::size_t at = 0; at < text.size(); at = text.find(';', at) + 1) {
    pieces.push_back(text.substr(at, text.find(';', at) - at));
    if (text.find(';', at) == std::string::npos) break;
  }
  return pieces;
}

class PropertyUpdateTest : public TProgramTest {
 protected:
  /// "Name=Wert" is a text property, "Name#" a number.
  static void WriteDocument(const std::string& properties, bool lenient) {
    std::string json;
    for (const std::string& piece : Pieces(properties)) {
      const std::size_t equals = piece.find('=');
      json += json.empty() ? "" : ", ";
      json += equals == std::string::npos
                  ? R"({"name": ")" + piece.substr(0, piece.size() - 1) + R"(", "type": "real", "value": 1})"
                  : TextProperty(piece.substr(0, equals), piece.substr(equals + 1));
    }
    WriteFile(kDocument,
              DocumentWith(json, lenient ? R"("pastEnd": "empty", "duplicateProperty": "accept",)" : ""));
  }
  static std::string Properties() {
    std::string result;
    const TDocumentFile document = simulator::ParseDocument(ReadFile(kDocument));
    for (const auto& property : document.PropertySets.at(3).Properties) {
      result += result.empty() ? "" : ";";
      result += Utf8FromText(property->Name);
      result += property->Value.IsText() ? "=" + Utf8FromText(property->Value.AsText()) : "#";
    }
    return result;
  }
};

}  // namespace

TEST_F(PropertyUpdateTest, AppliesTheList) {
  constexpr int kRefused = -1;
  const struct {
    const char* What;
    std::string Before;
    std::string List;
    std::string After;
    int Created;
    bool Lenient = false;
    const char* RemoveHint = "";  ///< the setting
  } cases[] = {
      {"names in any case", "Name=x;Rest=y", "NAME=neu;Mehr=2", "Name=neu;Rest=;Mehr=2", 1},
      {"an empty list empties every text", "A=1;Zahl#;B=2", "", "A=;Zahl#;B=", 0},
      {"a value that stays", "A=1", "A=1", "A=1", 0},
      {"a number is left alone, its name created again", "Zahl#", "Zahl=2", "Zahl#;Zahl=2", 1, true},
      {"unless the component refuses that", "Zahl#", "Zahl=2", "Zahl#", kRefused},
      {"a changed index", "I=a", "I=b", "I=b;IndexHinweis=!", 1},
      {"a change of case is a change", "I=a", "I=A", "I=A;IndexHinweis=!", 1},
      {"the same index", "I=a", "I=a", "I=a", 0},
      {"an index that the list does not name", "I=a", "", "I=;IndexHinweis=!", 1},
      {"an index that the document did not have", "", "I=b", "I=b;IndexHinweis=!", 2},
      {"an index that is no text counts as absent", "I#", "", "I#", 0},
      {"the index's name is exact", "i=a", "i=b", "i=b", 0},
      {"the hint is replaced; what moves up is passed over", "IndexHinweis=alt;A=1;I=a", "A=2;I=b",
       "A=1;I=b;A=2;IndexHinweis=!", 2, true},
      {"the last pass asks for a position that has gone", "IndexHinweis=alt;A=1", "", "IndexHinweis=alt;A=1",
       kRefused, false, "False"},
      {"a hint that stays is emptied, a second one asked for", "IndexHinweis=alt;I=a", "I=b",
       "IndexHinweis=;I=b;IndexHinweis=!", 1, true, "0x0"},
      {"which the component may refuse", "IndexHinweis=alt;I=a", "I=b", "IndexHinweis=alt;I=a", kRefused,
       false, "0"},
      {"in other case it is no hint", "indexhinweis=alt", "", "indexhinweis=", 0},
      {"an equal sign divides a created name", "", "A==v", "A==v", 1},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.What);
    WriteFile(
        u"C:\\Users\\Größe\\AppData\\VelMora\\Velmora.ini",
        std::string("[inventor]\nINV_IndexProp=I\nINV_IndexHint=!\nINV_AutoRemoveHint=") + test.RemoveHint);
    WriteDocument(test.Before, test.Lenient);
    std::string lines;
    for (std::string piece : Pieces(test.List)) lines += piece.replace(piece.rfind('='), 1, "\n") + "\n";
    WriteFile(u"C:\\Liste.txt", lines);
    const auto log = Run(u"/P \"C:\\Projekt\\Teil ä.ipt\" C:\\Liste.txt");
    EXPECT_EQ(Properties(), test.After);
    const std::string report = test.Created == 0   ? "0 text \" keine neue "
                               : test.Created == 1 ? "0 text \" ein "
                               : test.Created == 2 ? "0 text \"2 Properties neu "
                                                   : "0 error box \"Velmora\": ";
    EXPECT_TRUE(log.at(3).starts_with(report)) << log.at(3);
    EXPECT_EQ(LiveObjects(), 0);
  }
}

TEST_F(PropertyUpdateTest, UnreadableListLeavesDocumentClosed) {
  WriteDocument("A=1", false);
  EXPECT_EQ(Run(u"/P C:\\Teil.ipt C:\\fehlt.txt").at(3), "0 error box \"Velmora\": E/A-Fehler 104");
  EXPECT_EQ(Run(u"/P \"C:\\Projekt\\Teil ä.ipt\"").at(3), "0 error box \"Velmora\": E/A-Fehler 6");
  EXPECT_EQ(Run(u"/P C:\\Teil.ipt " + UnicodeString(260, u'x')).at(3),
            "0 error box \"Velmora\": Ungültiger Dateiname");
  EXPECT_TRUE(Trace.empty());
  headless::Machine().StandardInput = "A\n2\n";
  Run(u"/P \"C:\\Projekt\\Teil ä.ipt\"");
  EXPECT_EQ(Properties(), "A=2");
  // An empty document name is the component's to refuse, after the list has been read.
  headless::Machine().StandardInput = "A\n2\n";
  Run(u"/P");
  EXPECT_TRUE(Calls().at(0).starts_with("server.OpenDocument(\"\") !"));
}

TEST_F(PropertyUpdateTest, RemovesFirstTextHint) {
  const struct {
    std::string Before;
    std::string After;
    std::string Asked;  ///< of one property after the other: V(alue), N(ame)
  } cases[] = {
      {"IndexHinweis=alt;A=1", "A=1", "VN"},
      {"A=1;IndexHinweis=alt", "A=1", "VNVN"},
      {"IndexHinweis=alt;A=1;IndexHinweis=neu", "A=1;IndexHinweis=neu", "VN"},
      {"IndexHinweis#;IndexHinweis=alt", "IndexHinweis#", "VVN"},
      {"IndexHinweis#", "IndexHinweis#", "V"},
      {"indexhinweis=alt", "indexhinweis=alt", "VN"},
      {"", "", ""},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Before);
    WriteDocument(test.Before, false);
    const std::string before = ReadFile(kDocument);
    Run(u"/RI \"C:\\Projekt\\Teil ä.ipt\" drei");
    EXPECT_EQ(Properties(), test.After);
    const bool removed = test.Before != test.After;
    EXPECT_EQ(ReadFile(kDocument) != before, removed) << "written only after a removal";

    std::string expected = "OpenDocument PropertySets Item Count ";
    for (const char member : test.Asked) {
      expected += std::string("PropertySets Item Item ") + (member == 'V' ? "Value " : "Name ");
    }
    if (removed) expected += "PropertySets Item Item Delete PropertySets WritePropertiesToFile ";
    std::string members;
    for (const std::string& line : Calls()) {
      const std::size_t start = line.find('.') + 1;
      members += line.substr(start, line.find_first_of(" (", start) - start) + " ";
    }
    EXPECT_EQ(members, expected + "CloseDocument ");
    EXPECT_EQ(LiveObjects(), 0);
  }
}
