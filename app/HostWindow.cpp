#include "app/HostWindow.h"

namespace {

// The host's spelling. The status window's own caption "Velmora" differs in case only, which keeps the
// program from finding itself: the comparison must stay exact.
constexpr TextView kHostTitleWord = u"VelMora";

// Windows come and go during the walk; one that changes its place again and again must not hold it forever.
constexpr int kMostWindows = 20'000;

}  // namespace

TWindowHandle FindHostWindow(TWindowHandle own, TextView word) {
  TWindowHandle window = FirstWindow(own);
  for (int seen = 0; window != nullptr && seen < kMostWindows; ++seen) {
    if (WindowTitle(window).find(word) != UnicodeString::npos) return window;
    window = NextWindow(window);
  }
  return nullptr;
}

TRect HostRect(TWindowHandle own) {
  if (const TWindowHandle host = FindHostWindow(own, kHostTitleWord)) {
    if (const auto rect = WindowRect(host)) return *rect;
  }
  return WorkAreaAt(WindowRect(own).value_or(TRect()));
}
