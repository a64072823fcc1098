#include <algorithm>

#include "platform/windows/Wide.h"
#include "tests/e2e/Support.h"

namespace {

const std::wstring kMigration = L"Für diesen Befehl muss die IDW Datei vorher mit Inventor Migriert werden.";
const std::string kSets =
    R"("propertySets": [{"name": "1"}, {"name": "2"}, {"name": "3"}, {"name": "4", "properties": [
      {"name": "A", "type": "text", "value": "1"}, {"name": "IndexHinweis", "type": "text", "value": "alt"}]}])";

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
  const TProgram program(Arguments(L"/R", L"alt.idw"), Environment());
  const HWND box = program.MessageBox();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(MessageOf(box), kMigration);
  EXPECT_FALSE(HasIcon(box));
  EXPECT_EQ(::GetWindow(box, GW_OWNER), program.StatusWindow());
  PressOk(box);
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_EQ(ReadFile(L"alt.idw"), before);
  EXPECT_EQ(Trace().back(), "alive 0");
}

TEST_F(DocumentTasksE2e, RemovesHintOfDocumentWithUnusualName) {
  const std::wstring name = L"Теил €\U0001F600 & Co's.ipt";  // outside the ANSI code page
  WriteFile(name, ReadFile(L"Teil.ipt"));
  const TProgram program(L"  /\"R\"I " + Path(L"") + L"\"" + name + L"\"\tdrei vier",
                         Environment({{L"APPRENTICE_DELAY_MS", L"200"}}));
  EXPECT_TRUE(program.WaitForStatus(L"Indexhinweis wird entfernt..."));
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_EQ(ReadFile(name).find("IndexHinweis"), std::string::npos);
  EXPECT_NE(TraceText().find("OpenDocument(\"" + Utf8Path(name) + "\")"), std::string::npos);
  EXPECT_EQ(Trace().back(), "alive 0");
}
