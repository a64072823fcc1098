#include <algorithm>
#include <filesystem>

#include "tests/e2e/RemoteListView.h"
#include "tests/e2e/Support.h"

namespace {

const std::wstring kFolder = L"Getriebe 08-15";
const std::wstring kRoot = kFolder + L"\\Getriebe 08-15.iam";
// A dot for each level, the AutoID, "+" before references.
const std::string kOpened = "1 2+ .3 .4+ .12 .13+ .23+ .33 .34 .35 .36 .37 .38 .39 .40 ";
const std::string kExpanded =
    "1 2+ .3 .4+ ..5 ..6 ..7 ..8 ..9 ..10 ..11 .12 .13+ ..14 ..15 ..16 ..17 ..18 ..19+ ...20 ...21 ...22 "
    ".23+ ..24 ..25 ..26 ..27 ..28 ..29+ ...30 ...31 ...32 .33 .34 .35 .36 .37 .38 .39 .40 ";

class ExportDialogE2e : public EndToEnd {
 protected:
  void SetUp() override {
    std::filesystem::copy(BuiltPath(L"samples\\" + kFolder), Path(kFolder),
                          std::filesystem::copy_options::recursive);
  }

  std::wstring Arguments() const { return L"/E \"" + Path(kRoot) + L"\""; }
  /// How often the root was opened; a scan does so twice.
  std::ptrdiff_t RootOpened() const {
    return std::ranges::count(Trace(), "server.OpenDocument(\"" + Utf8Path(kRoot) + "\")");
  }
  void ExpectClosed(const TProgram& program) const {
    EXPECT_EQ(program.WaitForExit(), 0U);
    EXPECT_EQ(Trace().back(), "alive 0");
  }
};

/// The rows are there, and keys move among them: what is typed before the end of the scan is thrown away.
bool IsScanned(const TExportDialog& dialog) {
  const auto reaches = [&dialog](WPARAM key, const wchar_t* info) {
    return WaitUntil([&] {
      ::SendMessageW(dialog.List(), WM_KEYDOWN, key, 0);  // leaves nothing in the queue
      return dialog.Info() == info;
    });
  };
  return reaches(VK_END, L"40 von 40") && reaches(VK_HOME, L"1 von 40");
}

/// "Gehäuse.iam, Ebene 2, geöffnet | 4 | ..." becomes ".4+ ".
std::string Outline(const std::vector<std::string>& rows) {
  std::string outline;
  for (const std::string& row : rows) {
    const std::size_t level = row.find(", Ebene ") + 8;
    const std::size_t key = row.find(" | ") + 3;
    outline += std::string(static_cast<std::size_t>(row.at(level) - '1'), '.') +
               row.substr(key, row.find(" | ", key) - key) + (row.at(level + 1) == ',' ? "+ " : " ");
  }
  return outline;
}

std::vector<int> ColumnWidths(HWND list) {
  const TRemoteListView view(list);
  std::vector<int> widths;
  for (int column = 0; column < view.ColumnCount(); ++column) widths.push_back(view.ColumnWidth(column));
  return widths;
}

std::wstring ClipboardText() {
  std::wstring text;
  if (!::OpenClipboard(nullptr)) return text;
  if (const HANDLE data = ::GetClipboardData(CF_UNICODETEXT))
    text = static_cast<const wchar_t*>(::GlobalLock(data));
  ::CloseClipboard();
  return text;
}

/// The control that the user's keys go to; null while another program's window is in front.
HWND FocusIn(HWND form) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof thread;
  ::GetGUIThreadInfo(::GetWindowThreadProcessId(form, nullptr), &thread);
  return ::GetForegroundWindow() == form && thread.hwndActive == form ? thread.hwndFocus : nullptr;
}

}  // namespace

TEST_F(ExportDialogE2e, ShowsAssemblyAsTree) {
  const TProgram program(Arguments(), Environment());
  const TExportDialog dialog(program);
  ASSERT_TRUE(IsScanned(dialog));
  EXPECT_EQ(TextOf(dialog.Window()), L"Baugruppe \"Getriebe 08-15\" exportieren");
  EXPECT_EQ(dialog.Info(), L"1 von 40");
  const auto rows = dialog.Rows();
  ASSERT_EQ(Outline(rows), kOpened);
  const std::string folder = Utf8Path(kFolder);
  EXPECT_EQ(rows[0], "Getriebe 08-15.iam, Ebene 1 | 1 | Getriebe 08-15 | " + folder + "\\Getriebe 08-15.iam");
  EXPECT_EQ(rows[1], "Getriebe 08-15.idw, Ebene 1, geöffnet | 2 | Getriebe 08-15 | " + folder +
                         "\\Getriebe 08-15.idw");
  EXPECT_EQ(rows[3],
            "Gehäuse.iam, Ebene 2, geschlossen | 4 | Gehäuse.iam | " + folder + "\\Gehäuse\\Gehäuse.iam");
  EXPECT_EQ(rows[14], "Typenschild.ipt, Ebene 2 | 40 | Typenschild.ipt | Datei nicht gefunden!  " + folder +
                          "\\Abdeckung\\Typenschild.ipt");
  // Enter presses the button that has the focus, as often as the user likes.
  const HWND expand = dialog.Button(L"Alle Knoten öffnen");
  dialog.Press(VK_TAB);
  for (int i = 0; i < 2; ++i) ::PostMessageW(expand, WM_KEYDOWN, VK_RETURN, 0);
  EXPECT_TRUE(WaitUntil([&] { return Outline(dialog.Rows()) == kExpanded; }));
  EXPECT_EQ(FocusIn(dialog.Window()), expand);
  dialog.Press(VK_END);
  EXPECT_TRUE(WaitUntil([&] { return dialog.Info() == L"40 von 40"; }));
  dialog.Click(L"Alle Knoten schließen");
  EXPECT_EQ(Outline(dialog.Rows()), "1 2+ ");
  EXPECT_EQ(dialog.Info(), L"2 von 40") << "the ancestor of the current row takes over";
  ::SendMessageW(dialog.List(), WM_CHAR, L'ö', 0);
  EXPECT_EQ(dialog.Info(), L"36 von 40");
  EXPECT_EQ(Outline(dialog.Rows()), kOpened) << "what hides the name is opened";

  // Neither another program in front nor the way back from it scans again.
  const HWND focus = FocusIn(dialog.Window());
  ASSERT_EQ(focus, dialog.Button(L"Alle Knoten schließen"));
  const THostWindow other(L"Etwas anderes", {0, 0, 200, 200});
  ::SetForegroundWindow(other.Handle());
  ASSERT_TRUE(WaitUntil([&] { return FocusIn(dialog.Window()) == nullptr; }));
  ::SetForegroundWindow(dialog.Window());
  EXPECT_TRUE(WaitUntil([&] { return FocusIn(dialog.Window()) == focus; }));
  dialog.Click(L"Abbruch");
  ExpectClosed(program);
  EXPECT_EQ(RootOpened(), 2);
}

TEST_F(ExportDialogE2e, ListServesScreenReaderAndClipboard) {
  const TProgram program(Arguments(), Environment());
  const TExportDialog dialog(program);
  ASSERT_TRUE(IsScanned(dialog));
  const auto type = [&dialog](const std::wstring& letters) {
    for (const wchar_t letter : letters) ::SendMessageW(dialog.List(), WM_CHAR, letter, 0);
  };
  EXPECT_EQ(TextOf(dialog.List()), L"Dateien der Baugruppe");
  TRemoteListView(dialog.List()).Select(3);
  EXPECT_EQ(dialog.Info(), L"4 von 40");
  ::SendMessageW(dialog.List(), WM_KEYDOWN, VK_DOWN, 0);
  EXPECT_EQ(dialog.Info(), L"12 von 40");
  type(L"\x03");
  EXPECT_EQ(ClipboardText(), L"12\tAntriebswelle.iam\t" + Path(kFolder + L"\\Wellen\\Antriebswelle.idw"));
  type(L"abt*");
  EXPECT_EQ(dialog.Info(), L"23 von 40");
  EXPECT_NE(Outline(dialog.Rows()).find(" ..29+ ...30 "), std::string::npos) << "no name goes on with a star";
  dialog.Press(VK_ESCAPE);
  ExpectClosed(program);
}

TEST_F(ExportDialogE2e, ColumnsFollowDividers) {
  constexpr int kLevels = 30;
  for (int i = 1; i <= kLevels; ++i) {
    const std::string next = std::to_string(i + 1);
    WriteFile(std::to_wstring(i) + L".iam", i == kLevels ? "{}" : R"({"references": [")" + next + ".iam\"]}");
  }
  const TProgram program(L"/E \"" + Path(L"1.iam") + L"\"", Environment());
  const TExportDialog dialog(program);
  const TRemoteListView list(dialog.List());
  ASSERT_TRUE(WaitUntil([&] {
    dialog.Click(L"Alle Knoten öffnen");
    return list.RowCount() == kLevels;
  }));
  ::SendMessageW(dialog.List(), WM_KEYDOWN, VK_END, 0);
  // Where the sign of the last branch would be in a wide column.
  for (short y = 30; y < 580; y += 10) {
    ::SendMessageW(dialog.List(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(15 + (kLevels - 2) * 18 + 9, y));
  }
  EXPECT_EQ(list.RowCount(), std::size_t{kLevels}) << "another column's ground closes no branch";

  const auto header = reinterpret_cast<HWND>(::SendMessageW(dialog.List(), LVM_GETHEADER, 0, 0));
  EXPECT_EQ(::GetWindowLongPtrW(header, GWL_STYLE) & HDS_BUTTONS, 0) << "no header looks clickable";
  const auto mouse = [&](UINT message, int x) {
    ::SendMessageW(header, message, MK_LBUTTON, MAKELPARAM(x, 8));
  };
  const auto drag = [&](int from, int to) {
    mouse(WM_LBUTTONDOWN, from);
    mouse(WM_MOUSEMOVE, to);
    mouse(WM_LBUTTONUP, to);
  };
  const std::vector<int> before = ColumnWidths(dialog.List());
  const int divider = before[0] + before[1];
  drag(divider, divider - 200);
  const std::vector<int> moved = {before[0], before[1] - 200, before[2] + 200, before[3]};
  EXPECT_EQ(ColumnWidths(dialog.List()), moved);
  drag(before[0], before[0] + 50);
  EXPECT_EQ(ColumnWidths(dialog.List()), moved) << "the row indicator keeps its width";
  mouse(WM_LBUTTONDBLCLK, divider - 200 + moved[2]);
  const std::vector<int> fitted = ColumnWidths(dialog.List());
  EXPECT_LT(fitted[2], 200) << "as wide as its header";
  EXPECT_EQ(fitted, (std::vector<int>{moved[0], moved[1], fitted[2], moved[2] + moved[3] - fitted[2]}));
  ::PostMessageW(dialog.Window(), WM_SYSCOMMAND, SC_CLOSE, 0);
  ExpectClosed(program);
}

TEST_F(ExportDialogE2e, CentresOnHostAndLayoutFollowsSize) {
  const THostWindow host(L"VelMora", {100, 100, 1101, 901});
  const TProgram program(Arguments(), Environment());
  const TExportDialog dialog(program);
  ASSERT_TRUE(IsScanned(dialog));
  EXPECT_EQ(::GetWindow(dialog.Window(), GW_OWNER), program.StatusWindow());
  const RECT first = BoundsOf(dialog.Window());
  EXPECT_EQ(first.left, 100 + 1001 / 2 - (first.right - first.left) / 2);
  EXPECT_EQ(first.top, 100 + 801 / 2 - (first.bottom - first.top) / 2);
  const auto drawing = [button = dialog.Button(L"Exportieren")] {
    return std::pair(::SendMessageW(button, WM_GETFONT, 0, 0),
                     ::SendMessageW(button, BM_GETIMAGE, IMAGE_ICON, 0));
  };
  const auto before = drawing();
  const struct {
    SIZE Window;
    RECT Client;
  } sizes[] = {{{first.right - first.left, first.bottom - first.top}, {0, 0, 939, 630}},
               {{50, 50}, {0, 0, 480, 240}}};
  for (const auto& [size, client] : sizes) {
    ::SetWindowPos(dialog.Window(), nullptr, 10, 10, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
    RECT shown{};
    ::GetClientRect(dialog.Window(), &shown);
    EXPECT_TRUE(SameRect(shown, client));
    struct {
      HWND Control;
      RECT Bounds;
    } const controls[] = {
        {dialog.Tree(), {0, 0, client.right, client.bottom - 41}},
        {dialog.Button(L"Alle Knoten schließen"), {40, client.bottom - 33, 68, client.bottom - 8}},
        {dialog.Button(L"Exportieren"),
         {client.right - 227, client.bottom - 33, client.right - 117, client.bottom - 8}},
        {dialog.Button(L"Abbruch"),
         {client.right - 109, client.bottom - 33, client.right - 8, client.bottom - 8}},
    };
    for (const auto& control : controls) {
      RECT bounds = BoundsOf(control.Control);
      ::MapWindowPoints(nullptr, dialog.Window(), reinterpret_cast<POINT*>(&bounds), 2);
      EXPECT_TRUE(SameRect(bounds, control.Bounds))
          << Utf8FromText(FromWide(TextOf(control.Control).c_str()));
    }
    EXPECT_EQ(::GetWindowLongPtrW(dialog.List(), GWL_STYLE) & WS_HSCROLL, 0) << "the columns share the width";
    EXPECT_EQ(drawing(), before) << "font and image are made when the scale changes";
  }
  // The system's rectangle is taken as a whole, so that the way back ends where it began.
  const RECT larger = {20, 30, 900, 700};
  const auto setDpi = [&dialog](WORD dpi, const RECT& suggested) {
    const TRemoteMemory place(dialog.Window(), sizeof suggested);
    place.Write(&suggested, sizeof suggested);
    ::SendMessageW(dialog.Window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), place.Address());
    return SameRect(BoundsOf(dialog.Window()), suggested);
  };
  EXPECT_TRUE(setDpi(144, larger));
  EXPECT_NE(drawing(), before);
  EXPECT_TRUE(setDpi(96, first));
  ::PostMessageW(dialog.Window(), WM_CLOSE, 0, 0);
  ExpectClosed(program);
}

TEST_F(ExportDialogE2e, FailingScanShowsErrorAndNoRows) {
  const TProgram program(Arguments(), Environment({{L"APPRENTICE_FAIL_CALL", L"60"},
                                                   {L"APPRENTICE_FAIL_TEXT", L"Größe unbekannt."},
                                                   {L"APPRENTICE_DELAY_MS", L"300"}}));
  const TExportDialog dialog(program);
  // Sent in the middle of the work, they are dropped as clicks are.
  ASSERT_TRUE(WaitUntil([&] { return ::SendMessageW(dialog.Window(), WM_QUERYENDSESSION, 0, 0) == FALSE; }))
      << "at work";
  for (const HWND form : {dialog.Window(), program.StatusWindow()})
    ::SendNotifyMessageW(form, WM_CLOSE, 0, 0);
  EXPECT_EQ(::GetWindow(program.MessageBox(), GW_OWNER), dialog.Window());
  EXPECT_EQ(program.TextOfClosedBox(), L"Größe unbekannt.");
  EXPECT_EQ(RootOpened(), 2) << "coming back from the box is no activation";
  dialog.Click(L"Alle Knoten öffnen");
  EXPECT_TRUE(dialog.Rows().empty());
  dialog.Press(VK_RETURN);
  ExpectClosed(program);
  EXPECT_EQ(RootOpened(), 2);
}
