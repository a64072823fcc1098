#include "ui/ProgressBar.h"

#include <algorithm>

#include "platform/System.h"

namespace {

constexpr int kPingPongMilliseconds = 2400;  // there and back
constexpr double kPingPongWidth = 0.25;

/// Where the moving bar begins, from 0 to 1 - kPingPongWidth.
double PingPongBegin() {
  const double phase =
      static_cast<double>(TickMilliseconds() % kPingPongMilliseconds) / kPingPongMilliseconds;
  return (1 - kPingPongWidth) * (phase < 0.5 ? 2 * phase : 2 - 2 * phase);
}

}  // namespace

TProgressBar::TProgressBar(TForm& form) : TControl(form.Layout()), fWindow(form.Window()) {}

void TProgressBar::Repaint() {
  if (fStyle == TProgressTextStyle::Text) {
    const double begin = PingPongBegin();
    fWindow.SetBar(begin, begin + kPingPongWidth);
    fWindow.SetText(fText);
  } else {
    const int max = std::max(fMax, 1);
    const int position = std::clamp(fPosition, 0, max);
    fWindow.SetBar(0, static_cast<double>(position) / max);
    fWindow.SetText(DecimalText(std::int64_t{100} * position / max) + u" %");
  }
  fWindow.Repaint();
}
