#include <algorithm>

#include "platform/System.h"
#include "platform/windows/Wide.h"
#include "tests/e2e/Support.h"

namespace {

const std::wstring kMigration = L"Für diesen Befehl muss die IDW Datei vorher mit Inventor Migriert werden.";
const std::string kSets =
    R"("propertySets": [{"name": "1"}, {"name": "2"}, {"name": "3"}, {"name": "4", "properties": [
      {"name": "A", "type": "text", "value": "1"}, {"name": "IndexHinweis", "type": "text", "value": "alt"}]}])";

/// A message box has the control for its icon in any case; without an icon it is empty.
bool HasIcon(HWND box) {
  return ::SendMessageW(::GetDlgItem(box, 1088), STM_GETICON, 0, 0) != 0;
}

std::wstring SystemText(HRESULT result) {
  const UnicodeString text = SystemErrorText(result);
  return {text.begin(), text.end()};
}

class DocumentTasksE2e : public EndToEnd {
 protected:
  void SetUp() override {
    WriteFile(L"Größe & Co's.v2\\Teil 4711.idw",
              "{\"references\": [\"X:\\\\Alt\\\\a.ipt\", \"X:\\\\V1.2\\\\Rohling\"], " + kSets + "}");
    WriteFile(L"alt.idw", "{\"needsMigration\": 1, \"references\": [\"a.ipt\"], " + kSets + "}");
    WriteFile(L"Teil.ipt", "{" + kSets + "}");
  }

  std::wstring Arguments(const std::wstring& task, const std::wstring& file) const {
    return task + L" \"" + Path(file) + L"\"";
  }
};

}  // namespace

TEST_F(DocumentTasksE2e, ChangesReferencesOfDrawing) {
  const std::wstring drawing = L"Größe & Co's.v2\\Teil 4711.idw";
  const TProgram program(Arguments(L"/R", drawing), Environment({{L"APPRENTICE_DELAY_MS", L"400"}}));
  EXPECT_TRUE(program.WaitForStatus(L"Referenz wird geändert..."));
  EXPECT_TRUE(program.WaitForStatus(L"IDW Referenz geändert."));
  const ULONGLONG shown = ::GetTickCount64();
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_GT(::GetTickCount64() - shown, 1000U) << "the result stays long enough to be read";

  const std::string name = Utf8Path(drawing);
  const std::string base = name.substr(0, name.size() - 4);
  EXPECT_EQ(TraceText(), "server.Create\nserver.OpenDocument(\"" + name +
                             "\")\ndocument.NeedsMigration = false\ndocument.ReferencedFiles\n"
                             "referencedfiles.Count = 2\nreferencedfiles.Item(1)\n"
                             "referencedfile.FullFileName = \"X:\\Alt\\a.ipt\"\nreferencedfiles.Item(1)\n"
                             "referencedfile.ReplaceReference(\"" +
                             base +
                             ".ipt\")\nreferencedfiles.Item(2)\n"
                             "referencedfile.FullFileName = \"X:\\V1.2\\Rohling\"\nreferencedfiles.Item(2)\n"
                             "referencedfile.ReplaceReference(\"" +
                             base + "\")\nserver.SaveSet\nsaveset.AddDocumentToSave(document, \"" + name +
                             "\")\nserver.SaveSet\nsaveset.ExecuteSave()\ndocument.CloseDocument()\n"
                             "server.CloseServer()\ndocument.Release\nserver.Release\nalive 0\n");
  EXPECT_NE(ReadFile(drawing).find("Teil 4711.ipt"), std::string::npos);
}

TEST_F(DocumentTasksE2e, RefusesOldDrawingInABox) {
  const std::string before = ReadFile(L"alt.idw");
  for (const bool pressOk : {true, false}) {
    const TProgram program(Arguments(L"/R", L"alt.idw"), Environment());
    const HWND box = program.MessageBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(MessageOf(box), kMigration);
    EXPECT_FALSE(HasIcon(box));
    EXPECT_EQ(::GetWindow(box, GW_OWNER), program.StatusWindow());
    const ULONGLONG opened = ::GetTickCount64();
    if (pressOk) PressOk(box);
    EXPECT_EQ(program.WaitForExit(), 0U);
    if (!pressOk) {
      EXPECT_GT(::GetTickCount64() - opened, 2000U) << "only the timer may close it";
    }
    EXPECT_EQ(ReadFile(L"alt.idw"), before);
    const auto trace = Trace();
    EXPECT_EQ(std::ranges::count(trace, "document.CloseDocument()"), pressOk ? 1 : 2);
    EXPECT_EQ(std::ranges::count(trace, "server.CloseServer()"), pressOk ? 1 : 2);
    EXPECT_EQ(trace.back(), "alive 0");
  }
}

TEST_F(DocumentTasksE2e, RemovesFirstTextHint) {
  const std::string hint = R"({"name": "IndexHinweis", "type": "text", "value": "alt"})";
  const std::string number = R"({"name": "IndexHinweis", "type": "integer", "value": 1})";
  const std::string lower = R"({"name": "indexhinweis", "type": "text", "value": "alt"})";
  const std::string other = R"({"name": "A", "type": "text", "value": "1"})";
  const struct {
    const char* What;
    std::string Properties;
    std::vector<std::string> Asked;  // of one property after the other
    bool Removed;
  } cases[] = {
      {"first", hint + "," + other, {"Value", "Name"}, true},
      {"last", other + "," + hint, {"Value", "Name", "Value", "Name"}, true},
      {"twice", hint + "," + other + "," + hint, {"Value", "Name"}, true},
      {"as a number, then as a text", number + "," + hint, {"Value", "Value", "Name"}, true},
      {"as a number", number, {"Value"}, false},
      {"in other case", lower, {"Value", "Name"}, false},
      {"absent", other, {"Value", "Name"}, false},
      {"no properties", "", {}, false},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.What);
    const std::string before =
        "{\"propertySets\": [{}, {}, {}, {\"properties\": [" + test.Properties + "]}]}";
    WriteFile(L"Teil.ipt", before);
    WriteFile(L"trace.txt", "");
    const TProgram program(Arguments(L"/RI", L"Teil.ipt"), Environment({{L"APPRENTICE_DELAY_MS", L"200"}}));
    EXPECT_TRUE(program.WaitForStatus(L"Indexhinweis wird entfernt..."));
    EXPECT_EQ(program.WaitForExit(), 0U);
    EXPECT_EQ(ReadFile(L"Teil.ipt") == before, !test.Removed);

    std::string expected = "Create OpenDocument PropertySets Item Count ";
    for (const std::string& member : test.Asked) expected += "PropertySets Item Item " + member + " ";
    if (test.Removed) expected += "PropertySets Item Item Delete PropertySets WritePropertiesToFile ";
    std::string members;
    for (const std::string& line : Trace()) {
      const std::size_t start = line.find('.') + 1;
      members += line.substr(start, line.find_first_of(" (", start) - start) + " ";
    }
    EXPECT_EQ(members, expected + "CloseDocument Release Release alive ");
  }
}

TEST_F(DocumentTasksE2e, ArgumentsReachTheComponent) {
  const std::wstring name = L"Теил €\U0001F600 & Co's.ipt";  // outside the ANSI code page
  const std::string document = ReadFile(L"Teil.ipt");
  const std::wstring folder = Path(L"");
  for (const std::wstring& arguments :
       {L"/RI \"" + Path(name) + L"\" drei vier fünf", L"/\"R\"I " + folder + L"\"" + name + L"\"",
        L"  \"/RI\"\t\"" + folder + L"\"\"" + name + L"\""}) {
    WriteFile(name, document);
    const TProgram program(arguments, Environment());
    EXPECT_EQ(program.WaitForExit(), 0U);
    EXPECT_NE(ReadFile(name), "");
    EXPECT_EQ(ReadFile(name).find("IndexHinweis"), std::string::npos);
  }
  // A backslash before a quote escapes nothing; an empty argument ends the line.
  for (const std::wstring& arguments : {L"/RI \"" + folder + L"\" x", std::wstring(L"/RI \"\" x")}) {
    const TProgram program(arguments, Environment());
    const HWND box = program.MessageBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(program.WaitForExit(), 0U);
  }
  const std::string trace = TraceText();
  EXPECT_NE(trace.find("OpenDocument(\"" + Utf8Path(L"") + "\") !"), std::string::npos) << trace;
  EXPECT_NE(trace.find("OpenDocument(\"\") !"), std::string::npos) << trace;
  const TProgram empty(L"\"\" /RI \"" + Path(name) + L"\"", Environment());
  EXPECT_EQ(empty.WaitForExit(), 0U);
  EXPECT_EQ(TraceText(), trace) << "an empty first argument is none at all";
}

TEST_F(DocumentTasksE2e, ShowsComponentErrors) {
  struct {
    TProgram::TEnvironment Changes;
    std::wstring Text;
  } const cases[] = {
      {{{L"APPRENTICE_FAIL_CALL", L"2"},
        {L"APPRENTICE_FAIL_TEXT", L"Erste Zeile\r\nZweite " + std::wstring(2000, L'x')}},
       L"Erste Zeile\r\nZweite " + std::wstring(2000, L'x')},
      {{{L"APPRENTICE_FAIL_CALL", L"2"}, {L"APPRENTICE_FAIL_RESULT", L"0xA0ABCDEF"}},
       L"Systemfehler A0ABCDEF"},
      // A switch that the simulator does not know: the component cannot be created.
      {{{L"APPRENTICE_PAST_END", L"?"}}, SystemText(E_INVALIDARG)},
  };
  for (const auto& test : cases) {
    const TProgram program(Arguments(L"/RI", L"Teil.ipt"), Environment(test.Changes));
    const HWND box = program.MessageBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(MessageOf(box), test.Text);
    EXPECT_TRUE(HasIcon(box));
    PressOk(box);
    EXPECT_EQ(program.WaitForExit(), 0U) << "with OK pressed in time the timer ends the program";
  }
  EXPECT_EQ(Trace().back(), "alive 0");
}
