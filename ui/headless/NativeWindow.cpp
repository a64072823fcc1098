#include "ui/NativeWindow.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/headless/Machine.h"

using headless::Machine;

namespace {

std::string Described(const TRect& bounds) {
  return std::to_string(bounds.Left) + "," + std::to_string(bounds.Top) + " " +
         std::to_string(bounds.Width()) + "x" + std::to_string(bounds.Height());
}

}  // namespace

/// A form stands in the machine's Z order, above all others, while it lives.
struct TNativeWindow::TImpl {
  TWindowKind Kind;
  TImpl* Parent;
  headless::TDesktopWindow Window{};
  TWindowEvents Events{};
  std::vector<TImpl*> Children{};
  bool Visible = false;

  bool OnScreen() const { return Parent != nullptr ? Parent->OnScreen() : Visible; }

  void Paint() const {
    if (Kind == TWindowKind::Label) Machine().Record("paint \"" + Utf8FromText(Window.Title) + "\"");
    for (const TImpl* child : Children) child->Paint();
  }
};

TNativeWindow::TNativeWindow(TWindowKind kind, TextView, TNativeWindow* parent, TWindowEvents events)
    : fImpl(new TImpl{kind, parent != nullptr ? parent->fImpl.get() : nullptr}) {
  fImpl->Events = std::move(events);
  if (fImpl->Parent != nullptr) {
    fImpl->Parent->Children.push_back(fImpl.get());
  } else {
    Machine().ZOrder.insert(Machine().ZOrder.begin(), &fImpl->Window);
  }
}

TNativeWindow::~TNativeWindow() {
  if (fImpl->Parent != nullptr) {
    std::erase(fImpl->Parent->Children, fImpl.get());
  } else {
    std::erase(Machine().ZOrder, &fImpl->Window);
  }
}

TWindowHandle TNativeWindow::Handle() const {
  return reinterpret_cast<TWindowHandle>(&fImpl->Window);
}

void TNativeWindow::SetBounds(const TRect& bounds) {
  fImpl->Window.Bounds = bounds;
}

void TNativeWindow::SetText(TextView text) {
  fImpl->Window.Title = text;
  if (fImpl->Kind == TWindowKind::Label) Machine().Record("text \"" + Utf8FromText(text) + "\"");
}

void TNativeWindow::SetFont(const TFont&, int) {}

void TNativeWindow::Show() {
  fImpl->Visible = true;
  Machine().Record("show " + Described(fImpl->Window.Bounds));
}

void TNativeWindow::Repaint() {
  if (fImpl->OnScreen()) fImpl->Paint();
}
