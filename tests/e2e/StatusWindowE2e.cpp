#include <nlohmann/json.hpp>

#include "platform/windows/Wide.h"
#include "tests/e2e/Support.h"

namespace {

const std::wstring kWorking = L"Properties werden aktualisiert...";

// A text, a number, a date, a Boolean, the index and a hint.
const std::string kDocument = R"({
  "displayName": "Teil",
  "pastEnd": "empty",
  "propertySets": [
    {"name": "1", "properties": []}, {"name": "2", "properties": []}, {"name": "3", "properties": []},
    {"name": "4", "properties": [
      {"name": "Bezeichnung", "type": "text", "value": "Deckel"},
      {"name": "Anzahl", "type": "integer", "value": 4},
      {"name": "Datum", "type": "date", "value": "2024-03-15"},
      {"name": "Geprüft", "type": "boolean", "value": true},
      {"name": "INTZUSTAND-EOF", "type": "text", "value": "a"},
      {"name": "IndexHinweis", "type": "text", "value": "alt"}]}]
})";

/// Every call of the update of kDocument: the whole chain anew for each access, and nothing more.
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
  property(3, "Value = date 2024-03-15");
  property(4, "Value = boolean true");
  text(5, "INTZUSTAND-EOF", "a", "b");
  text(6, "IndexHinweis", "alt", "");
  property(6, "Delete()");
  trace += set + "AddProperty(text \"5 €\", \"Preis\", 0)\n";
  trace += set + "AddProperty(text \"ACHTUNG! Geänderte Zeichnung\", \"IndexHinweis\", 0)\n";
  return trace + "document.PropertySets\npropertysets.WritePropertiesToFile()\ndocument.CloseDocument()\n" +
         "document.Release\nserver.Release\nalive 0\n";
}

class StatusWindowE2e : public EndToEnd {
 protected:
  void SetUp() override {
    WriteFile(L"Teil ä.ipt", kDocument);
    WriteFile(L"Liste.txt", "BEZEICHNUNG\r\nGro\xDF\r\nINTZUSTAND-EOF\r\nb\r\nPreis\r\n5 \x80\r\n");
  }

  std::wstring Arguments() const {
    return L"/P \"" + Path(L"Teil ä.ipt") + L"\" \"" + Path(L"Liste.txt") + L"\"";
  }
  std::string Property(std::size_t position) const {
    const auto document = nlohmann::json::parse(ReadFile(L"Teil ä.ipt"));
    const auto& property = document["propertySets"][3]["properties"].at(position);
    return property["name"].get<std::string>() + "=" + property["value"].dump();
  }
  std::size_t PropertyCount() const {
    return nlohmann::json::parse(ReadFile(L"Teil ä.ipt"))["propertySets"][3]["properties"].size();
  }
};

}  // namespace

TEST_F(StatusWindowE2e, WritesDocumentAndCloses) {
  const TProgram program(Arguments(), Environment({{L"APPRENTICE_DELAY_MS", L"400"}}));
  const HWND form = program.StatusWindow();
  ASSERT_NE(form, nullptr);
  EXPECT_TRUE(program.WaitForStatus(kWorking));
  EXPECT_TRUE(program.WaitForStatus(L"2 Properties neu angelegt...\rkeine Properties aktualisiert..."));
  EXPECT_EQ(TextOf(form), L"Velmora");
  const LONG_PTR style = ::GetWindowLongPtrW(form, GWL_STYLE);
  const LONG_PTR extended = ::GetWindowLongPtrW(form, GWL_EXSTYLE);
  EXPECT_EQ(style & (WS_POPUP | WS_CAPTION | WS_THICKFRAME), WS_POPUP);
  EXPECT_EQ(extended & (WS_EX_TOPMOST | WS_EX_APPWINDOW | WS_EX_TOOLWINDOW), WS_EX_TOPMOST | WS_EX_APPWINDOW);
  EXPECT_EQ(program.WaitForExit(), 0U);

  ASSERT_EQ(PropertyCount(), 7U);
  EXPECT_EQ(Property(0), "Bezeichnung=\"Groß\"");
  EXPECT_EQ(Property(1), "Anzahl=4");
  EXPECT_EQ(Property(4), "INTZUSTAND-EOF=\"b\"");
  EXPECT_EQ(Property(5), "Preis=\"5 €\"");
  EXPECT_EQ(Property(6), "IndexHinweis=\"ACHTUNG! Geänderte Zeichnung\"");
  EXPECT_TRUE(Exists(L"AppData\\VelMora\\DBExt"));
  EXPECT_FALSE(Exists(L"AppData\\VelMora\\Velmora.ini"));
  EXPECT_EQ(Property(2), "Datum=\"2024-03-15\"");
  EXPECT_EQ(TraceText(), ExpectedTrace(Utf8Path(L"Teil ä.ipt")));
}

TEST_F(StatusWindowE2e, CentresOnFirstHostWindow) {
  RECT work{};
  ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  struct {
    const wchar_t* Title;
    RECT Bounds;
    bool Visible;
    bool Found;
  } const cases[] = {
      {L"Projekt 4711 - VelMora CAD", {100, 100, 901, 701}, true, true},
      {L"VelMora", {300, 200, 700, 600}, false, true},   // hidden windows count
      {L"VelMora", {-400, -200, 201, 101}, true, true},  // partly off the screen: so is the status window
      {L"Velmora velmora", {100, 100, 901, 701}, true, false},
  };
  for (const auto& test : cases) {
    const THostWindow host(test.Title, test.Bounds, test.Visible);
    const THostWindow front(L"Etwas anderes", {0, 0, 50, 50});  // in front of the host
    const TProgram program(Arguments(), Environment());
    const HWND form = program.StatusWindow();
    ASSERT_NE(form, nullptr);
    const RECT r = test.Found ? test.Bounds : work;
    const LONG left = r.left + (r.right - r.left) / 2 - 150;
    const LONG top = r.top + (r.bottom - r.top) / 2 - 35;
    EXPECT_TRUE(SameRect(BoundsOf(form), {left, top, left + 300, top + 70}))
        << BoundsOf(form).left << "," << BoundsOf(form).top;
    RECT client{};
    ::GetClientRect(form, &client);
    EXPECT_TRUE(SameRect(client, {0, 0, 300, 70}));
    EXPECT_NE(::GetForegroundWindow(), form) << "the user's window keeps the input focus";
    EXPECT_EQ(program.WaitForExit(), 0U);
  }
}

TEST_F(StatusWindowE2e, TimerClosesErrorBox) {
  const std::wstring text = L"Die Datei ist gesperrt (Müller).\r\nZweite Zeile";
  const TProgram program(Arguments(),
                         Environment({{L"APPRENTICE_FAIL_CALL", L"3"}, {L"APPRENTICE_FAIL_TEXT", text}}));
  const HWND box = program.MessageBox();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(MessageOf(box), text);
  EXPECT_TRUE(HasIcon(box));
  EXPECT_EQ(::GetWindow(box, GW_OWNER), program.StatusWindow());
  EXPECT_EQ(program.StatusText(), kWorking);
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_EQ(ReadFile(L"Teil ä.ipt"), kDocument);
  EXPECT_EQ(Trace().back(), "alive 0");
}

TEST_F(StatusWindowE2e, ReadsSettingsAndStandardInput) {
  WriteFile(
      L"AppData\\VelMora\\Velmora.ini",
      "[Inventor]\r\nINV_IndexProp=Bezeichnung\r\nINV_IndexHint=Ge\xE4ndert!\r\nINV_AutoRemoveHint=0x0\r\n");
  const TProgram program(L"/P \"" + Path(L"Teil ä.ipt") + L"\"",
                         Environment({{L"APPRENTICE_DUPLICATE", L"accept"}}), "INTZUSTAND-EOF\nb\n");
  EXPECT_EQ(program.WaitForExit(), 0U);
  ASSERT_EQ(PropertyCount(), 7U);
  EXPECT_EQ(Property(0), "Bezeichnung=\"\"");
  EXPECT_EQ(Property(5), "IndexHinweis=\"\"");
  EXPECT_EQ(Property(6), "IndexHinweis=\"Geändert!\"");
}

TEST_F(StatusWindowE2e, UnknownSwitchShowsEmptyWindow) {
  const TProgram program(L"/p \"" + Path(L"Teil ä.ipt") + L"\"", Environment());
  const HWND form = program.StatusWindow();
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(program.StatusText(), L"");
  EXPECT_FALSE(WaitUntil([&] { return program.HasEnded(); }, 4500)) << "no timer may end it";
  ::PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0);  // the command of its task bar button
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_TRUE(Trace().empty());
}
