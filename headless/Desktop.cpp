#include "platform/Desktop.h"

#include <algorithm>

#include "headless/Machine.h"

using headless::Machine;
using headless::TDesktopWindow;

namespace {

constexpr std::size_t kLongestTitle = 254;

TDesktopWindow* Find(TWindowHandle window) {
  const auto& order = Machine().ZOrder;
  const auto found = std::ranges::find(order, reinterpret_cast<TDesktopWindow*>(window));
  return found != order.end() ? *found : nullptr;
}

TWindowHandle HandleOf(TDesktopWindow* window) {
  return reinterpret_cast<TWindowHandle>(window);
}

}  // namespace

TWindowHandle FirstWindow(TWindowHandle) {
  const auto& order = Machine().ZOrder;
  return order.empty() ? nullptr : HandleOf(order.front());
}

TWindowHandle NextWindow(TWindowHandle window) {
  const auto& order = Machine().ZOrder;
  const auto found = std::ranges::find(order, reinterpret_cast<TDesktopWindow*>(window));
  return found == order.end() || found + 1 == order.end() ? nullptr : HandleOf(*(found + 1));
}

UnicodeString WindowTitle(TWindowHandle window) {
  const TDesktopWindow* found = Find(window);
  return found != nullptr ? found->Title.substr(0, kLongestTitle) : UnicodeString();
}

std::optional<TRect> WindowRect(TWindowHandle window) {
  const TDesktopWindow* found = Find(window);
  return found != nullptr ? std::optional(found->Bounds) : std::nullopt;
}

TRect NearestWorkArea(TWindowHandle) {
  return Machine().WorkArea;
}

int DpiAt(const TRect&) {
  return Machine().Dpi;
}
