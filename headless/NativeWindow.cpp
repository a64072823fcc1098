#include "ui/NativeWindow.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include "headless/DialogScreen.h"
#include "headless/Machine.h"
#include "ui/Application.h"

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
  TImpl* Parent;  ///< null for forms, dialogs too
  headless::TDesktopWindow Window{};
  TWindowEvents Events{};
  std::vector<TImpl*> Children{};
  int LeastWidth = 0;
  int LeastHeight = 0;
  bool Visible = false;
  double BarBegin = 0;
  double BarEnd = 0;

  static std::vector<TImpl*>& Dialogs() {
    static std::vector<TImpl*> dialogs;
    return dialogs;
  }
  static TImpl& TopDialog() {
    if (Dialogs().empty()) throw std::logic_error("no dialog is open");
    return *Dialogs().back();
  }

  bool IsForm() const { return Kind == TWindowKind::StatusForm || Kind == TWindowKind::Dialog; }
  bool OnScreen() const { return Visible && (Parent == nullptr || Parent->OnScreen()); }
  std::string Quoted() const { return "\"" + Utf8FromText(Window.Title) + "\""; }

  void Paint() const {
    if (!Visible) return;
    if (Kind == TWindowKind::Label) Machine().Record("paint " + Quoted());
    if (Kind == TWindowKind::ProgressBar) {
      const auto percent = [](double part) { return std::to_string(std::lround(part * 100)); };
      Machine().Record("bar " + percent(BarBegin) + "-" + percent(BarEnd) + " " + Quoted());
    }
    for (const TImpl* child : Children) child->Paint();
  }

  /// The first child of which `suits` says so.
  template <class TPredicate>
  TImpl& Child(TPredicate suits) const {
    const auto found = std::ranges::find_if(Children, [&](const TImpl* child) { return suits(*child); });
    if (found == Children.end()) throw std::logic_error("no such button");
    return **found;
  }
};

TNativeWindow::TNativeWindow(TWindowKind kind, TextView, TNativeWindow* parent, TWindowEvents events)
    : fImpl(new TImpl{kind, nullptr}) {
  headless::ThrowIfFails("CreateWindow");
  fImpl->Events = std::move(events);
  if (fImpl->IsForm()) {
    Machine().ZOrder.insert(Machine().ZOrder.begin(), &fImpl->Window);
    if (kind == TWindowKind::Dialog) TImpl::Dialogs().push_back(fImpl.get());
  } else {
    fImpl->Parent = parent->fImpl.get();
    fImpl->Visible = true;
    fImpl->Parent->Children.push_back(fImpl.get());
  }
}

TNativeWindow::~TNativeWindow() {
  std::erase(Machine().ZOrder, &fImpl->Window);
  std::erase(TImpl::Dialogs(), fImpl.get());
  if (fImpl->Parent != nullptr) std::erase(fImpl->Parent->Children, fImpl.get());
}

TWindowHandle TNativeWindow::Handle() const {
  return reinterpret_cast<TWindowHandle>(&fImpl->Window);
}

void TNativeWindow::SetBounds(const TRect& bounds) {
  fImpl->Window.Bounds = bounds;
}

void TNativeWindow::SetPosition(int left, int top) {
  TRect& bounds = fImpl->Window.Bounds;
  bounds = {left, top, left + bounds.Width(), top + bounds.Height()};
}

/// Forms have no frame here.
void TNativeWindow::SetClientSize(int width, int height, int) {
  TRect& bounds = fImpl->Window.Bounds;
  bounds.Right = bounds.Left + width;
  bounds.Bottom = bounds.Top + height;
}

void TNativeWindow::SetLeastClientSize(int width, int height, int) {
  fImpl->LeastWidth = width;
  fImpl->LeastHeight = height;
}

void TNativeWindow::SetText(TextView text) {
  fImpl->Window.Title = text;
  if (fImpl->Kind == TWindowKind::Label) Machine().Record("text " + fImpl->Quoted());
  if (fImpl->Kind == TWindowKind::Dialog) Machine().Record("title " + fImpl->Quoted());
}

UnicodeString TNativeWindow::Text() const {
  return fImpl->Window.Title;
}

void TNativeWindow::SetFont(const TFont&, int) {}
void TNativeWindow::SetImage(TButtonImage) {}
void TNativeWindow::SetTextHidden() {}

void TNativeWindow::SetBar(double begin, double end) {
  fImpl->BarBegin = begin;
  fImpl->BarEnd = end;
}

void TNativeWindow::Show() {
  fImpl->Visible = true;
  const std::string kind = fImpl->Kind == TWindowKind::Dialog ? "show dialog " : "show ";
  Machine().Record(kind + Described(fImpl->Window.Bounds));
}

void TNativeWindow::Hide() {
  fImpl->Visible = false;
  Machine().Record("hide dialog");
}

void TNativeWindow::SetVisible(bool visible) {
  fImpl->Visible = visible;
}

void TNativeWindow::Focus() {}

void TNativeWindow::Repaint() {
  if (fImpl->OnScreen()) fImpl->Paint();
}

namespace headless {

void TDialogScreen::Press(TextView button) {
  const auto& pressed = TNativeWindow::TImpl::TopDialog().Child([button](const auto& child) {
    return child.Visible && child.Events.OnClick && child.Window.Title == button;
  });
  Application->Guard(pressed.Events.OnClick);
}

void TDialogScreen::PressEnter() {
  const auto& pressed = TNativeWindow::TImpl::TopDialog().Child(
      [](const auto& child) { return child.Kind == TWindowKind::DefaultButton; });
  Application->Guard(pressed.Events.OnClick);
}

void TDialogScreen::PressEscape() {
  Application->Guard(TNativeWindow::TImpl::TopDialog().Events.OnClose);
}

void TDialogScreen::Resize(int width, int height) {
  auto& dialog = TNativeWindow::TImpl::TopDialog();
  TRect& bounds = dialog.Window.Bounds;
  bounds.Right = bounds.Left + std::max(width, dialog.LeastWidth);
  bounds.Bottom = bounds.Top + std::max(height, dialog.LeastHeight);
  Application->Guard([&dialog, &bounds] { dialog.Events.OnSized(bounds.Width(), bounds.Height()); });
}

}  // namespace headless
