#include "ui/windows/TreeNavigator.h"

#include <algorithm>

namespace {

struct TButtonDesign {
  const char16_t* Caption;
  TTreeKey Key;
  bool Forwards;
  int Arrows;
};
constexpr std::array kDesigns = {
    TButtonDesign{u"Vorherige Seite", TTreeKey::PageUp, false, 2},
    TButtonDesign{u"Vorheriger Eintrag", TTreeKey::Up, false, 1},
    TButtonDesign{u"Nächster Eintrag", TTreeKey::Down, true, 1},
    TButtonDesign{u"Nächste Seite", TTreeKey::PageDown, true, 2},
};
constexpr WORD kFirstCommand = 0x7100;

constexpr int kBarHeight = 26;
constexpr int kButtonSize = 22;
constexpr int kImageSize = 12;

using TBitmapHandle = TUniqueHandle<HBITMAP, ::DeleteObject>;

/// A surface that draws into `bitmap`.
class TMemoryDc {
 public:
  explicit TMemoryDc(HBITMAP bitmap)
      : fDc(::CreateCompatibleDC(nullptr)), fOld(::SelectObject(fDc, bitmap)) {}
  ~TMemoryDc() {
    ::SelectObject(fDc, fOld);
    ::DeleteDC(fDc);
  }
  TMemoryDc(const TMemoryDc&) = delete;
  TMemoryDc& operator=(const TMemoryDc&) = delete;

  HDC Dc() const noexcept { return fDc; }

 private:
  HDC fDc;
  HGDIOBJ fOld;
};

/// Fills the bitmap with `ground` and the button's arrows.
void PaintArrows(HBITMAP bitmap, int size, const TButtonDesign& design, COLORREF colour, COLORREF ground) {
  const TMemoryDc memory(bitmap);
  FillArea(memory.Dc(), {0, 0, size, size}, ground);
  const int half = size * 5 / 12;
  const int step = design.Forwards ? half : -half;
  POINT base{(size - step * design.Arrows) / 2, size / 2};
  for (int i = 0; i < design.Arrows; ++i, base.x += step) PaintArrow(memory.Dc(), base, step, colour);
}

/// A disabled button is drawn by the mask alone.
TIconHandle ArrowIcon(const TButtonDesign& design, int size, COLORREF colour) {
  constexpr COLORREF kBlack = RGB(0, 0, 0);
  const TScreenDc screen;
  const TBitmapHandle image(::CreateCompatibleBitmap(screen.Dc(), size, size));
  const TBitmapHandle mask(::CreateBitmap(size, size, 1, 1, nullptr));
  if (!image || !mask) return {};
  PaintArrows(image.Get(), size, design, colour, kBlack);
  PaintArrows(mask.Get(), size, design, kBlack, RGB(255, 255, 255));
  ICONINFO icon{TRUE, 0, 0, mask.Get(), image.Get()};
  return TIconHandle(::CreateIconIndirect(&icon));
}

TWindow MakeChild(HWND ground, const wchar_t* windowClass, const wchar_t* text, DWORD style, WORD command) {
  TWindow child(::CreateWindowExW(0, windowClass, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, ground,
                                  reinterpret_cast<HMENU>(static_cast<UINT_PTR>(command)), ProgramInstance(),
                                  nullptr));
  if (!child) throw LastSystemError();
  return child;
}

}  // namespace

TTreeNavigator::TTreeNavigator(HWND ground, TToolTip& toolTip)
    : fInfo(MakeChild(ground, L"STATIC", L"", SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX, 0)), fDpi(kDesignDpi) {
  static_assert(kDesigns.size() == kButtonCount);
  for (std::size_t i = 0; i < kButtonCount; ++i) {
    // The caption is not drawn beside an image; it is the button's name to a screen reader.
    const auto command = static_cast<WORD>(kFirstCommand + i);
    fButtons[i].Window = MakeChild(ground, L"BUTTON", Wide(kDesigns[i].Caption), BS_ICON, command);
    toolTip.AddChild(fButtons[i].Window.Get(), kDesigns[i].Caption);
  }
}

void TTreeNavigator::SetScale(HFONT font, int dpi) {
  fDpi = dpi;
  ::SendMessageW(fInfo.Get(), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  UpdateColours();
}

void TTreeNavigator::UpdateColours() {
  for (std::size_t i = 0; i < kButtonCount; ++i) {
    TIconHandle image = ArrowIcon(kDesigns[i], ScaledToDpi(kImageSize, fDpi), ::GetSysColor(COLOR_BTNTEXT));
    ::SendMessageW(fButtons[i].Window.Get(), BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(image.Get()));
    fButtons[i].Image = std::move(image);
  }
}

void TTreeNavigator::SetInfo(const UnicodeString& text) {
  ::SetWindowTextW(fInfo.Get(), Wide(text));
}

void TTreeNavigator::Enable(bool backwards, bool forwards) {
  for (std::size_t i = 0; i < kButtonCount; ++i) {
    ::EnableWindow(fButtons[i].Window.Get(), kDesigns[i].Forwards ? forwards : backwards);
  }
}

int TTreeNavigator::Height() const {
  return ScaledToDpi(kBarHeight, fDpi);
}

void TTreeNavigator::Arrange(const RECT& area) {
  const int size = ScaledToDpi(kButtonSize, fDpi);
  const int inset = (static_cast<int>(area.bottom - area.top) - size) / 2;
  int left = area.left + inset;
  const auto place = [&](const TWindow& window, int width) {
    ::SetWindowPos(window.Get(), nullptr, left, area.top + inset, width, size, SWP_NOZORDER | SWP_NOACTIVATE);
    left += width;
  };
  for (const TButton& button : fButtons) place(button.Window, size);
  left += ScaledToDpi(8, fDpi);
  place(fInfo, std::max(0, static_cast<int>(area.right) - left));
}

std::optional<TTreeKey> TTreeNavigator::KeyOf(WORD command) {
  if (command < kFirstCommand || command >= kFirstCommand + kButtonCount) return std::nullopt;
  return kDesigns[command - kFirstCommand].Key;
}
