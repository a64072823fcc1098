#include "ui/windows/TreeNavigator.h"

#include <algorithm>
#include <cstdint>
#include <vector>

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

/// How much of a pixel the arrows cover, 0 to 255. All lengths are in fractions of the image; an arrow points
/// to the right, half as wide as high.
int Coverage(int x, int y, int size, int arrows) {
  constexpr int kSamples = 8;
  constexpr double kHalfHeight = 0.42;
  const double width = arrows == 1 ? 0.44 : 0.42;
  const double left = 0.5 - width * arrows / 2;
  int hits = 0;
  for (int i = 0; i < kSamples * kSamples; ++i) {
    const double across = (x + (i % kSamples + 0.5) / kSamples) / size - left;
    const double up =
        (y + (i / kSamples + 0.5) / kSamples) / size - 0.5;  // NOLINT(bugprone-integer-division)
    if (across < 0 || across >= width * arrows) continue;
    const double within = across - (across >= width ? width : 0);
    if (std::abs(up) <= kHalfHeight * (1 - within / width)) ++hits;
  }
  return hits * 255 / (kSamples * kSamples);
}

TIconHandle ArrowIcon(const TButtonDesign& design, int size, COLORREF colour) {
  BITMAPINFO format{};
  format.bmiHeader = {sizeof(BITMAPINFOHEADER), size, -size, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const TBitmapHandle image(::CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!image) return {};
  auto* pixel = static_cast<std::uint32_t*>(bits);
  const auto rgb =
      static_cast<std::uint32_t>(GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour));
  // A disabled button is drawn by the mask alone: set bits are outside the arrows. Its lines end at 16 bits.
  const int maskLine = (size + 15) / 16 * 2;
  std::vector<std::uint8_t> maskBits(static_cast<std::size_t>(maskLine * size));
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const int coverage = Coverage(design.Forwards ? x : size - 1 - x, y, size, design.Arrows);
      *pixel++ = static_cast<std::uint32_t>(coverage) << 24 | (coverage != 0 ? rgb : 0);
      if (coverage < 128)
        maskBits[static_cast<std::size_t>(y * maskLine + x / 8)] |= static_cast<std::uint8_t>(0x80 >> x % 8);
    }
  }
  const TBitmapHandle mask(::CreateBitmap(size, size, 1, 1, maskBits.data()));
  if (!mask) return {};
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
