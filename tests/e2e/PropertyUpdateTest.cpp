#include <algorithm>
#include <nlohmann/json.hpp>

#include "platform/windows/Wide.h"
#include "tests/e2e/Support.h"

namespace {

const std::wstring kWorking = L"Properties werden aktualisiert...";
const std::wstring kNothing = L" keine neue Properties angelegt...\rkeine Properties aktualisiert...";

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

class PropertyUpdate : public EndToEnd {
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

RECT BoundsOf(HWND window) {
  RECT bounds{};
  ::GetWindowRect(window, &bounds);
  return bounds;
}

bool SameRect(const RECT& a, const RECT& b) {
  return ::EqualRect(&a, &b) != 0;
}

}  // namespace

TEST_F(PropertyUpdate, WritesTheDocumentAndCloses) {
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
  const auto trace = Trace();
  ASSERT_FALSE(trace.empty());
  EXPECT_EQ(trace.back(), "alive 0");
  EXPECT_EQ(std::ranges::count(trace, "propertysets.WritePropertiesToFile()"), 1);
}

TEST_F(PropertyUpdate, SendsTheseCallsAndNoOthers) {
  WriteFile(L"Teil ä.ipt",
            R"({"propertySets": [{"name": "1"}, {"name": "2"}, {"name": "3"}, {"name": "4", "properties": [
      {"name": "A", "type": "text", "value": "1"}, {"name": "B", "type": "real", "value": 2.5}]}]})");
  WriteFile(L"Liste.txt", "a\n2\nC\n3\n");
  const TProgram program(Arguments(), Environment());
  EXPECT_EQ(program.WaitForExit(), 0U);
  const std::string to = "document.PropertySets|propertysets.Item(4)|propertyset.";
  const std::string first = to + "Item(1)|property.";
  std::string expected =
      "server.Create|server.OpenDocument(\"" + Utf8FromText(FromWide(Path(L"Teil ä.ipt").c_str())) + "\")|" +
      to + "Count = 2|" + first + "Value = text \"1\"|" + first + "Name = \"A\"|" + first +
      "Value = text \"1\"|" + first + "Value := text \"\"|" + first + "Name = \"A\"|" + first +
      "Value := text \"2\"|" + first + "Name = \"A\"|" + to + "Item(2)|property.Value = real 2.5|" + to +
      "AddProperty(text \"3\", \"C\", 0)|document.PropertySets|" +
      "propertysets.WritePropertiesToFile()|document.CloseDocument()|" +
      "document.Release|server.Release|alive 0|";
  std::string calls;
  for (const std::string& line : Trace()) calls += line + "|";
  EXPECT_EQ(calls, expected);
}

TEST_F(PropertyUpdate, StandsOverTheFirstWindowThatNamesTheHost) {
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

TEST_F(PropertyUpdate, AnErrorBoxIsClosedByTheTimer) {
  WriteFile(L"Liste.txt", "A\n1\n");
  struct {
    std::wstring List;
    std::wstring FailCall;
    std::wstring Text;
  } const cases[] = {
      {L"fehlt.txt", L"0", L"E/A-Fehler 104"},
      {std::wstring(300, L'x'), L"0", L"Ungültiger Dateiname"},
      {L"Liste.txt", L"3", L"Die Datei ist gesperrt (Müller)."},
  };
  for (const auto& test : cases) {
    const TProgram program(L"/P \"" + Path(L"Teil ä.ipt") + L"\" \"" + Path(test.List) + L"\"",
                           Environment({{L"APPRENTICE_FAIL_CALL", test.FailCall},
                                        {L"APPRENTICE_FAIL_TEXT", L"Die Datei ist gesperrt (Müller)."}}));
    const HWND box = program.MessageBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(TextOf(box), L"Velmora");
    EXPECT_EQ(TextOf(::GetDlgItem(box, 0xFFFF)), test.Text);
    EXPECT_EQ(::GetWindow(box, GW_OWNER), program.StatusWindow());
    EXPECT_EQ(program.StatusText(), kWorking);
    EXPECT_EQ(program.WaitForExit(), 0U);
    EXPECT_EQ(ReadFile(L"Teil ä.ipt"), kDocument);
  }
  EXPECT_EQ(Trace().back(), "alive 0");
}

TEST_F(PropertyUpdate, ReadsSettingsAndStandardInput) {
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

TEST_F(PropertyUpdate, AnUnknownSwitchLeavesAnEmptyWindowUntilItIsClosed) {
  const TProgram program(L"/p \"" + Path(L"Teil ä.ipt") + L"\"", Environment());
  const HWND form = program.StatusWindow();
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(program.StatusText(), L"");
  EXPECT_FALSE(WaitUntil([&] { return program.HasEnded(); }, 4500)) << "no timer may end it";
  ::PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0);  // the command of its task bar button
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_TRUE(Trace().empty());
}

TEST_F(PropertyUpdate, EndsAtOnceWithoutArguments) {
  const TProgram program(L"", Environment());
  EXPECT_EQ(program.WaitForExit(), 0U);
}
