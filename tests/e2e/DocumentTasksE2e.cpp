#include "platform/windows/Wide.h"
#include "tests/e2e/Support.h"

namespace {

// A text, a number, a date, a Boolean, the index and a hint.
const std::string kDocument = R"({
  "displayName": "Teil",
  "pastEnd": "empty",
  "propertySets": [
    {"name": "1", "properties": []}, {"name": "2", "properties": []}, {"name": "3", "properties": []},
    {"name": "4", "properties": [
      {"name": "Bezeichnung", "type": "text", "value": "Deckel"},
      {"name": "Anzahl", "type": "integer", "value": 4},
      {"name": "Datum", "type": "date", "value": 45366.25},
      {"name": "Geprüft", "type": "boolean", "value": true},
      {"name": "INTZUSTAND-EOF", "type": "text", "value": "a"},
      {"name": "IndexHinweis", "type": "text", "value": "alt"}]}]
})";

/// Every call of the update of kDocument: the whole chain again for each access, and nothing more.
std::string ExpectedTrace(const std::string& path) {
  const std::string set = "document.PropertySets\npropertysets.Item(4)\npropertyset.";
  std::string trace = "server.Create\nserver.OpenDocument(\"" + path + "\")\n" + set + "Count = 6\n";
  const auto property = [&](int position, const std::string& call) {
    trace += set + "Item(" + std::to_string(position) + ")\nproperty." + call + "\n";
  };
  const auto text = [&](int position, const std::string& name, const std::string& old,
                        const std::string& value) {
    property(position, "Value = text \"" + old + "\"");
    property(position, "Name = \"" + name + "\"");
    if (name == "INTZUSTAND-EOF") property(position, "Value = text \"" + old + "\"");
    property(position, "Value = text \"" + old + "\"");
    property(position, "Value := text \"\"");
    property(position, "Name = \"" + name + "\"");
    if (!value.empty()) property(position, "Value := text \"" + value + "\"");
    property(position, "Name = \"" + name + "\"");  // whether it is the hint
  };
  text(1, "Bezeichnung", "Deckel", "Groß");
  property(2, "Value = integer 4");
  property(3, "Value = date 45366.25");
  property(4, "Value = boolean true");
  text(5, "INTZUSTAND-EOF", "a", "b");
  text(6, "IndexHinweis", "alt", "");
  property(6, "Delete()");
  trace += set + "AddProperty(text \"5 €\", \"Preis\", 0)\n";
  trace += set + "AddProperty(text \"ACHTUNG! Geänderte Zeichnung\", \"IndexHinweis\", 0)\n";
  return trace + "document.PropertySets\npropertysets.WritePropertiesToFile()\ndocument.CloseDocument()\n" +
         "document.Release\nserver.Release\nalive 0\n";
}

class DocumentTasksE2e : public EndToEnd {
 protected:
  void SetUp() override {
    WriteFile(L"Größe & Co's.v2\\Teil 4711.idw",
              "{\"references\": [\"X:\\\\Alt\\\\a.ipt\", \"X:\\\\V1.2\\\\Rohling\"]}");
    WriteFile(L"alt.idw", "{\"needsMigration\": 1, \"references\": [\"a.ipt\"]}");
    WriteFile(L"Teil ä.ipt", kDocument);
    WriteFile(L"Liste.txt", "BEZEICHNUNG\r\nGro\xDF\r\nINTZUSTAND-EOF\r\nb\r\nPreis\r\n5 \x80\r\n");
  }

  std::wstring Arguments(const std::wstring& task, const std::wstring& file) const {
    return task + L" \"" + Path(file) + L"\"";
  }
};

}  // namespace

TEST_F(DocumentTasksE2e, WritesDocumentAndCloses) {
  const TProgram program(Arguments(L"/P", L"Teil ä.ipt") + L" \"" + Path(L"Liste.txt") + L"\"",
                         Environment({{L"APPRENTICE_DELAY_MS", L"400"}}));
  EXPECT_TRUE(program.WaitForStatus(L"Properties werden aktualisiert..."));
  EXPECT_TRUE(program.WaitForStatus(L"2 Properties neu angelegt...\rkeine Properties aktualisiert..."));
  EXPECT_EQ(program.WaitForExit(), 0U);

  EXPECT_NE(ReadFile(L"Teil ä.ipt").find("5 €"), std::string::npos);
  EXPECT_TRUE(Exists(L"AppData\\VelMora\\DBExt"));
  EXPECT_FALSE(Exists(L"AppData\\VelMora\\Velmora.ini"));
  EXPECT_EQ(TraceText(), ExpectedTrace(Utf8Path(L"Teil ä.ipt")));
}

TEST_F(DocumentTasksE2e, ReadsSettingsAndStandardInput) {
  WriteFile(L"Liste.txt", "INTZUSTAND-EOF\nb\n");
  WriteFile(
      L"AppData\\VelMora\\Velmora.ini",
      "[Inventor]\r\nINV_IndexProp=Bezeichnung\r\nINV_IndexHint=Ge\xE4ndert!\r\nINV_AutoRemoveHint=0x0\r\n");
  const TProgram program(Arguments(L"/P", L"Teil ä.ipt"), Environment({{L"APPRENTICE_DUPLICATE", L"accept"}}),
                         Path(L"Liste.txt"));
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_NE(TraceText().find("Value := text \"b\""), std::string::npos);
  EXPECT_NE(TraceText().find("AddProperty(text \"Geändert!\", \"IndexHinweis\", 0)"), std::string::npos);
  EXPECT_EQ(TraceText().find("Delete()"), std::string::npos);
}

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
  const TProgram program(Arguments(L"/R", L"alt.idw"), Environment());
  const HWND box = program.MessageBox();
  ASSERT_NE(box, nullptr);
  EXPECT_FALSE(HasIcon(box));
  EXPECT_EQ(::GetWindow(box, GW_OWNER), program.StatusWindow());
  EXPECT_EQ(program.TextOfClosedBox(),
            L"Für diesen Befehl muss die IDW Datei vorher mit Inventor Migriert werden.");
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_EQ(ReadFile(L"alt.idw"), before);
  EXPECT_TRUE(
      TraceText().ends_with("NeedsMigration = 1\ndocument.CloseDocument()\nserver.CloseServer()\n"
                            "document.Release\nserver.Release\nalive 0\n"))
      << TraceText();
}

TEST_F(DocumentTasksE2e, RemovesHintOfDocumentWithUnusualName) {
  const std::wstring name = L"Теил €\U0001F600 & Co's.ipt";  // outside the ANSI code page
  WriteFile(name, kDocument);
  const TProgram program(L"  /\"R\"I " + Path(L"") + L"\"" + name + L"\"\tdrei vier",
                         Environment({{L"APPRENTICE_DELAY_MS", L"200"}}));
  EXPECT_TRUE(program.WaitForStatus(L"Indexhinweis wird entfernt..."));
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_EQ(ReadFile(name).find("IndexHinweis"), std::string::npos);
  EXPECT_NE(TraceText().find("OpenDocument(\"" + Utf8Path(name) + "\")"), std::string::npos);
  EXPECT_EQ(Trace().back(), "alive 0");
}
