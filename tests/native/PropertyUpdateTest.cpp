#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/DocumentFile.h"
#include "tests/support/ProgramTest.h"

namespace {

constexpr TextView kDocument = u"C:\\Projekt\\Teil ä.ipt";
constexpr TextView kList = u"C:\\Projekt\\Liste.txt";
constexpr TextView kRun = u"/P \"C:\\Projekt\\Teil ä.ipt\" C:\\Projekt\\Liste.txt";
const std::string kIndex = "INTZUSTAND-EOF";
const std::string kHint = "IndexHinweis";

class PropertyUpdateTest : public TProgramTest {
 protected:
  void Settings(const std::string& lines) {
    WriteFile(u"C:\\Users\\Größe\\AppData\\VelMora\\Velmora.ini", "[Inventor]\n" + lines);
  }

  /// The properties of the fourth set as "name=value", other types than text as "name:type".
  static std::vector<std::string> Properties() {
    std::vector<std::string> result;
    const TDocumentFile document = simulator::ParseDocument(ReadFile(kDocument));
    for (const auto& property : document.PropertySets.at(3).Properties) {
      const std::string name = Utf8FromText(property->Name);
      result.push_back(property->Value.IsText()
                           ? name + "=" + Utf8FromText(property->Value.AsText())
                           : name + ":" + std::to_string(static_cast<int>(property->Value.Type())));
    }
    return result;
  }
};

}  // namespace

TEST_F(PropertyUpdateTest, LeavesTheDocumentAsTheListSays) {
  const std::string hint = TextProperty(kHint, "alt");
  const std::string numbers =
      R"({"name": "Zahl", "type": "real", "value": 1.5}, {"name": "Ja", "type": "boolean", "value": true})";
  const std::string lenient = R"("pastEnd": "empty", "duplicateProperty": "accept",)";
  struct {
    const char* What;
    std::string Settings;
    std::string More;
    std::string Before;
    std::string List;
    std::vector<std::string> After;
    std::string Report;
  } const cases[] = {
      {"refilled, emptied, created; names in any case",
       "",
       "",
       TextProperty("Name", "x") + "," + TextProperty("Rest", "y"),
       "NAME\nneu\nMehr\n2\n",
       {"Name=neu", "Rest=", "Mehr=2"},
       " ein Propertie neu angelegt..."},
      {"an empty list empties every text",
       "",
       "",
       TextProperty("A", "1") + "," + numbers,
       "",
       {"A=", "Zahl:5", "Ja:11"},
       " keine neue Properties angelegt..."},
      {"a value that stays is written all the same",
       "",
       "",
       TextProperty("A", "1"),
       "A\n1\n",
       {"A=1"},
       " keine neue Properties angelegt..."},
      {"other types are left alone; their name is created again",
       "",
       R"("duplicateProperty": "accept",)",
       numbers,
       "Zahl\n2\n",
       {"Zahl:5", "Ja:11", "Zahl=2"},
       " ein Propertie neu angelegt..."},
      {"a changed index adds the hint",
       "",
       "",
       TextProperty(kIndex, "a"),
       kIndex + "\nb\n",
       {kIndex + "=b", kHint + "=ACHTUNG! Geänderte Zeichnung"},
       " ein Propertie neu angelegt..."},
      {"a change of case is a change",
       "",
       "",
       TextProperty(kIndex, "a"),
       kIndex + "\nA\n",
       {kIndex + "=A", kHint + "=ACHTUNG! Geänderte Zeichnung"},
       " ein Propertie neu angelegt..."},
      {"the same index adds none",
       "",
       "",
       TextProperty(kIndex, "a"),
       kIndex + "\na\n",
       {kIndex + "=a"},
       " keine neue Properties angelegt..."},
      {"an index that the list does not name is emptied, a change",
       "",
       "",
       TextProperty(kIndex, "a"),
       "",
       {kIndex + "=", kHint + "=ACHTUNG! Geänderte Zeichnung"},
       " ein Propertie neu angelegt..."},
      {"an index that the document did not have",
       "",
       "",
       "",
       kIndex + "\nb\n",
       {kIndex + "=b", kHint + "=ACHTUNG! Geänderte Zeichnung"},
       "2 Properties neu angelegt..."},
      {"an index that is no text counts as absent",
       "INV_IndexProp=Zahl\n",
       R"("duplicateProperty": "accept",)",
       numbers,
       "",
       {"Zahl:5", "Ja:11"},
       " keine neue Properties angelegt..."},
      {"names of the index are exact",
       "INV_IndexProp=REV\n",
       "",
       TextProperty("rev", "a"),
       "rev\nb\n",
       {"rev=b"},
       " keine neue Properties angelegt..."},
      {"the hint is replaced; what moves up is passed over",
       "INV_IndexHint=Neu!\n",
       lenient,
       hint + "," + TextProperty("A", "1") + "," + TextProperty(kIndex, "a"),
       "A\n2\n" + kIndex + "\nb\n",
       {"A=1", kIndex + "=b", "A=2", kHint + "=Neu!"},
       "2 Properties neu angelegt..."},
      {"without removal the hint is emptied and a second one asked for",
       "INV_AutoRemoveHint=0x0\n",
       R"("duplicateProperty": "accept",)",
       hint + "," + TextProperty(kIndex, "a"),
       kIndex + "\nb\n",
       {kHint + "=", kIndex + "=b", kHint + "=ACHTUNG! Geänderte Zeichnung"},
       " ein Propertie neu angelegt..."},
      {"a hint in other case is a property like any other",
       "",
       "",
       TextProperty("indexhinweis", "alt"),
       "",
       {"indexhinweis="},
       " keine neue Properties angelegt..."},
      {"an equal sign divides a created name",
       "",
       "",
       "",
       "A=B\nv\n",
       {"A=B=v"},
       " ein Propertie neu angelegt..."},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.What);
    Settings(test.Settings);
    WriteFile(kDocument, DocumentWith(test.Before, test.More));
    WriteFile(kList, test.List);
    const auto log = Run(kRun);
    EXPECT_EQ(Properties(), test.After);
    EXPECT_EQ(log.at(3), "0 text \"" + test.Report + "\rkeine Properties aktualisiert...\"");
    EXPECT_EQ(LiveObjects(), 0);
  }
}

TEST_F(PropertyUpdateTest, FetchesTheWholeChainForEveryAccess) {
  const std::string chain[] = {"document.PropertySets", "propertysets.Item(4)"};
  std::vector<std::string> expected;
  const auto set = [&](const std::string& call) {
    expected.insert(expected.end(), {chain[0], chain[1], "propertyset." + call});
  };
  const auto property = [&](int index, const std::string& call) {
    set("Item(" + std::to_string(index) + ")");
    expected.push_back("property." + call);
  };
  const auto text = [&](int index, const std::string& name, const std::string& value, bool isIndex) {
    property(index, "Value = text \"" + value + "\"");
    property(index, "Name = \"" + name + "\"");
    if (isIndex) property(index, "Value = text \"" + value + "\"");
    property(index, "Value = text \"" + value + "\"");
    property(index, "Value := text \"\"");
    property(index, "Name = \"" + name + "\"");
  };
  expected.emplace_back("server.OpenDocument(\"C:\\Projekt\\Teil ä.ipt\")");
  set("Count = 6");
  text(1, "Name", "x", false);
  property(1, "Value := text \"neu\"");
  property(1, "Name = \"Name\"");
  property(2, "Value = integer 7");
  property(3, "Value = date 2024-03-15");
  property(4, "Value = boolean true");
  text(5, kIndex, "a", true);
  property(5, "Value := text \"b\"");
  property(5, "Name = \"" + kIndex + "\"");
  text(6, kHint, "alt", false);
  property(6, "Name = \"" + kHint + "\"");
  property(6, "Delete()");
  set("AddProperty(text \"2\", \"Mehr\", 0)");
  set("AddProperty(text \"ACHTUNG! Geänderte Zeichnung\", \"IndexHinweis\", 0)");
  expected.insert(expected.end(),
                  {chain[0], "propertysets.WritePropertiesToFile()", "document.CloseDocument()"});

  WriteFile(kDocument, DocumentWith(TextProperty("Name", "x") +
                                    R"(, {"name": "Zahl", "type": "integer", "value": 7},)"
                                    R"( {"name": "Tag", "type": "date", "value": "2024-03-15"},)"
                                    R"( {"name": "Ja", "type": "boolean", "value": true}, )" +
                                    TextProperty(kIndex, "a") + "," + TextProperty(kHint, "alt")));
  WriteFile(kList, "name\nneu\nMehr\n2\n" + kIndex + "\nb\n");
  Run(kRun);
  EXPECT_EQ(Calls(), expected);
  EXPECT_EQ(Trace.front(), "server.Create");
}

TEST_F(PropertyUpdateTest, AnErrorOfTheComponentChangesNothingBeforeTheWrite) {
  const std::string before = DocumentWith(TextProperty("A", "1") + "," + TextProperty(kIndex, "a") + "," +
                                          TextProperty(kHint, "alt"));
  WriteFile(kList, "A\n2\nB\n3\n" + kIndex + "\nb\n");
  std::int64_t call = 1;
  for (bool survived = false; !survived; ++call) {
    SCOPED_TRACE(call);
    WriteFile(kDocument, before);
    Simulation.FailCall = call;
    Simulation.FailText = u"Gesperrt durch \"Müller\"";
    const auto log = Run(kRun);
    const std::string last = Calls().back();
    survived = last == "document.CloseDocument()";
    const bool written = survived || last.starts_with("document.CloseDocument() !");
    EXPECT_EQ(ReadFile(kDocument) != before, written);
    EXPECT_EQ(LiveObjects(), 0);
    const std::vector<std::string> failed = {"0 text \"Properties werden aktualisiert...\"",
                                             "0 show 490,477 300x70",
                                             "0 paint \"Properties werden aktualisiert...\"",
                                             "0 error box \"Velmora\": Gesperrt durch \"Müller\"",
                                             "3600 box ended by quit",
                                             "3600 quit"};
    if (!survived) {
      EXPECT_EQ(log, failed);
    }
  }
  EXPECT_GT(call, 60) << "the sweep must have gone through all calls of the task";
}

TEST_F(PropertyUpdateTest, RefusalsOfTheComponentEndTheUpdate) {
  struct {
    std::string Before;
    std::string List;
    std::string Refused;
  } const cases[] = {
      // The last pass asks for a position that has gone with the hint.
      {TextProperty(kHint, "alt") + "," + TextProperty("A", "1"), "", "propertyset.Item(2) ! "},
      // The name belongs to a number, which is not updated, and a second one is refused.
      {R"({"name": "Zahl", "type": "integer", "value": 7})", "Zahl\n8\n", "propertyset.AddProperty("},
  };
  for (const auto& test : cases) {
    const std::string before = DocumentWith(test.Before);
    WriteFile(kDocument, before);
    WriteFile(kList, test.List);
    const auto log = Run(kRun);
    EXPECT_TRUE(Calls().back().starts_with(test.Refused)) << Calls().back();
    EXPECT_TRUE(log.at(3).starts_with("0 error box \"Velmora\": ")) << log.at(3);
    EXPECT_EQ(ReadFile(kDocument), before);
    EXPECT_EQ(LiveObjects(), 0);
  }
}

TEST_F(PropertyUpdateTest, WithoutAReadableListTheDocumentIsNotOpened) {
  WriteFile(kDocument, DocumentWith(TextProperty("A", "1")));
  EXPECT_EQ(Run(kRun).at(3), "0 error box \"Velmora\": E/A-Fehler 104");
  EXPECT_EQ(Run(u"/P \"C:\\Projekt\\Teil ä.ipt\"").at(3), "0 error box \"Velmora\": E/A-Fehler 6");
  EXPECT_TRUE(Trace.empty());
  headless::Machine().StandardInput = "A\n2\n";
  Run(u"/P \"C:\\Projekt\\Teil ä.ipt\"");
  EXPECT_EQ(Properties(), (std::vector<std::string>{"A=2"}));
  // An empty document name is the component's to refuse, after the list has been read.
  headless::Machine().StandardInput = "A\n2\n";
  Run(u"/P");
  EXPECT_TRUE(Calls().at(0).starts_with("server.OpenDocument(\"\") !"));
}
