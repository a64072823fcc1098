#include "platform/windows/Wide.h"
#include "tests/e2e/Support.h"

namespace {

const std::wstring kWorking = L"Properties werden aktualisiert...";
const std::string kDocument = R"({"propertySets": [{}, {}, {}, {}]})";

class StatusWindowE2e : public EndToEnd {
 protected:
  void SetUp() override {
    WriteFile(L"Teil ä.ipt", kDocument);
    WriteFile(L"Liste.txt", "A\n1\n");
  }

  std::wstring Arguments() const {
    return L"/P \"" + Path(L"Teil ä.ipt") + L"\" \"" + Path(L"Liste.txt") + L"\"";
  }
};

}  // namespace

TEST_F(StatusWindowE2e, CentresOnFirstHostWindow) {
  struct {
    const wchar_t* Title;
    RECT Bounds;
    bool Visible;
  } const cases[] = {
      {L"Projekt 4711 - VelMora CAD", {100, 100, 901, 701}, true},
      {L"VelMora", {-400, -200, 201, 101}, false},  // hidden, and partly off the screen
  };
  for (const auto& test : cases) {
    const THostWindow second(L"VelMora", {0, 0, 50, 50});
    const THostWindow host(test.Title, test.Bounds, test.Visible);
    const THostWindow front(L"Velmora velmora", {0, 0, 50, 50});  // does not name the host
    const TProgram program(Arguments(), Environment());
    const HWND form = program.StatusWindow();
    ASSERT_NE(form, nullptr);
    const RECT& r = test.Bounds;
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

TEST_F(StatusWindowE2e, UnknownSwitchShowsEmptyWindow) {
  const TProgram program(L"/p \"" + Path(L"Teil ä.ipt") + L"\"", Environment());
  const HWND form = program.StatusWindow();
  ASSERT_NE(form, nullptr);
  EXPECT_EQ(program.StatusText(), L"");
  EXPECT_EQ(TextOf(form), L"Velmora");
  const LONG_PTR style = ::GetWindowLongPtrW(form, GWL_STYLE);
  const LONG_PTR extended = ::GetWindowLongPtrW(form, GWL_EXSTYLE);
  EXPECT_EQ(style & (WS_POPUP | WS_CAPTION | WS_THICKFRAME), WS_POPUP);
  EXPECT_EQ(extended & (WS_EX_TOPMOST | WS_EX_APPWINDOW | WS_EX_TOOLWINDOW), WS_EX_TOPMOST | WS_EX_APPWINDOW);
  RECT work{};
  ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  const RECT bounds = BoundsOf(form);
  EXPECT_EQ(bounds.left, work.left + (work.right - work.left) / 2 - 150) << "without a host";
  EXPECT_EQ(bounds.top, work.top + (work.bottom - work.top) / 2 - 35);
  const HWND panel = ::FindWindowExW(form, nullptr, L"TPanel", nullptr);
  EXPECT_EQ(::SendMessageW(panel, WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(form),
                           MAKELPARAM(HTCLIENT, WM_LBUTTONDOWN)),
            MA_NOACTIVATE)
      << "a click leaves the keyboard to the host";
  ::PostMessageW(form, WM_SYSCOMMAND, SC_CLOSE, 0);  // the command of its task bar button
  EXPECT_EQ(program.WaitForExit(), 0U);
  EXPECT_TRUE(Trace().empty());
}

TEST_F(StatusWindowE2e, BevelsStayClearOfTheScaledLabel) {
  const TProgram program(L"/p", Environment());
  const HWND form = program.StatusWindow();
  ASSERT_NE(form, nullptr);
  ::SendMessageW(form, WM_DPICHANGED, MAKEWPARAM(144, 144),
                 0);  // this form does not take the suggested place
  const RECT bounds = BoundsOf(form);
  EXPECT_EQ(bounds.right - bounds.left, 450);
  EXPECT_EQ(bounds.bottom - bounds.top, 105);
  auto widthOf = [x = bounds.left, y = (bounds.top + bounds.bottom) / 2](int colour) mutable {
    const HDC screen = ::GetDC(nullptr);
    int width = 0;
    for (; ::GetPixel(screen, x, y) == ::GetSysColor(colour); ++x) ++width;
    ::ReleaseDC(nullptr, screen);
    return width;
  };
  int outer = 0;
  EXPECT_TRUE(WaitUntil([&] { return (outer = widthOf(COLOR_BTNSHADOW)) > 0; }));
  EXPECT_EQ(widthOf(COLOR_BTNHIGHLIGHT), outer) << "the label covers nothing of the inner one";
  ::PostMessageW(form, WM_CLOSE, 0, 0);
  EXPECT_EQ(program.WaitForExit(), 0U);
}
