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

struct TNativeWindow::TImpl : headless::TDesktopWindow {
  explicit TImpl(TImpl* parent) : Parent(parent) {
    headless::ThrowIfFails("CreateWindow");
    if (Parent != nullptr) Parent->Children.push_back(this);
  }
  virtual ~TImpl() {
    if (Parent != nullptr) std::erase(Parent->Children, this);
  }
  TImpl(const TImpl&) = delete;
  TImpl& operator=(const TImpl&) = delete;

  virtual void TextChanged() const {}
  virtual void Paint() const {}

  bool OnScreen() const { return Visible && (Parent == nullptr || Parent->OnScreen()); }
  std::string Quoted() const { return "\"" + Utf8FromText(Title) + "\""; }
  void PaintChanges() {
    if (!Visible) return;
    if (std::exchange(Changed, false)) Paint();
    for (TImpl* child : Children) child->PaintChanges();
  }

  TImpl* Parent;  // null for forms, dialogs too
  std::vector<TImpl*> Children{};
  bool Visible = false;
  bool Changed = true;  // since it was painted
};

namespace {

/// A form is in the machine's Z order, above all others, while it lives. It has no frame here.
struct TFormImpl : TNativeWindow::TImpl {
  TFormImpl(TFormKind kind, TFormEvents events) : TImpl(nullptr), Kind(kind), Events(std::move(events)) {
    Machine().ZOrder.insert(Machine().ZOrder.begin(), static_cast<headless::TDesktopWindow*>(this));
    if (Kind == TFormKind::Dialog) Dialogs().push_back(this);
  }
  ~TFormImpl() override {
    std::erase(Machine().ZOrder, static_cast<headless::TDesktopWindow*>(this));
    std::erase(Dialogs(), this);
  }

  static std::vector<TFormImpl*>& Dialogs() {
    static std::vector<TFormImpl*> dialogs;
    return dialogs;
  }
  static TFormImpl& TopDialog() {
    if (Dialogs().empty()) throw std::logic_error("no dialog is open");
    return *Dialogs().back();
  }

  void TextChanged() const override {
    if (Kind == TFormKind::Dialog) Machine().Record("title " + Quoted());
  }
  void SetSize(int width, int height) {
    Bounds.Right = Bounds.Left + width;
    Bounds.Bottom = Bounds.Top + height;
    Events.OnSized(width, height, Dpi);
  }

  TFormKind Kind;
  TFormEvents Events;
  int Dpi = kDesignDpi;
  int LeastWidth = 0;  // at kDesignDpi
  int LeastHeight = 0;
};

struct TControlImpl : TNativeWindow::TImpl {
  TControlImpl(TControlKind kind, TImpl* parent) : TImpl(parent), Kind(kind) { Visible = true; }

  void TextChanged() const override {
    if (Kind == TControlKind::Label) Machine().Record("text " + Quoted());
  }
  void Paint() const override {
    if (Kind == TControlKind::Label) Machine().Record("paint " + Quoted());
  }

  TControlKind Kind;
};

struct TButtonImpl : TControlImpl {
  TButtonImpl(TButtonRole role, TImpl* parent, std::function<void()> onClick)
      : TControlImpl(TControlKind::Ground, parent), Role(role), OnClick(std::move(onClick)) {}

  TButtonRole Role;
  std::function<void()> OnClick;
};

struct TBarImpl : TControlImpl {
  explicit TBarImpl(TImpl* parent) : TControlImpl(TControlKind::Ground, parent) {}

  void Paint() const override {
    const auto percent = [](double part) { return std::to_string(std::lround(part * 100)); };
    Machine().Record("bar " + percent(Begin) + "-" + percent(End) + " " + Quoted());
  }

  double Begin = 0;
  double End = 0;
};

TFormImpl& Form(TNativeWindow::TImpl& impl) {
  return static_cast<TFormImpl&>(impl);
}

TNativeWindow::TImpl* ImplOf(const TNativeWindow& window) {
  return static_cast<TNativeWindow::TImpl*>(reinterpret_cast<headless::TDesktopWindow*>(window.Handle()));
}

std::string Described(const TRect& bounds) {
  return std::to_string(bounds.Left) + "," + std::to_string(bounds.Top) + " " +
         std::to_string(bounds.Width()) + "x" + std::to_string(bounds.Height());
}

/// The first button of the dialog for which `suits` says so.
template <class TPredicate>
void PressButton(TPredicate suits) {
  for (TNativeWindow::TImpl* const child : TFormImpl::TopDialog().Children) {
    const auto* const button = dynamic_cast<TButtonImpl*>(child);
    if (button != nullptr && suits(*button)) return Application->Guard(button->OnClick);
  }
  throw std::logic_error("no such button");
}

}  // namespace

TNativeWindow::TNativeWindow(std::unique_ptr<TImpl> impl) : fImpl(std::move(impl)) {}

TNativeWindow::~TNativeWindow() = default;

TWindowHandle TNativeWindow::Handle() const {
  return reinterpret_cast<TWindowHandle>(static_cast<headless::TDesktopWindow*>(fImpl.get()));
}

void TNativeWindow::SetText(TextView text) {
  fImpl->Title = text;
  fImpl->Changed = true;
  fImpl->TextChanged();
}

void TNativeWindow::Repaint() {
  if (fImpl->OnScreen()) fImpl->PaintChanges();
}

TNativeForm::TNativeForm(TFormKind kind, TextView, const TNativeForm*, TFormEvents events)
    : TNativeWindow(std::make_unique<TFormImpl>(kind, std::move(events))) {}

void TNativeForm::SetPosition(int left, int top) {
  TRect& bounds = fImpl->Bounds;
  bounds = {left, top, left + bounds.Width(), top + bounds.Height()};
}

void TNativeForm::SetClientSize(int width, int height) {
  Form(*fImpl).SetSize(width, height);
}

void TNativeForm::SetLeastClientSize(int width, int height) {
  Form(*fImpl).LeastWidth = width;
  Form(*fImpl).LeastHeight = height;
}

void TNativeForm::ScaleTo(int dpi) {
  TFormImpl& form = Form(*fImpl);
  const auto scaled = [dpi, old = form.Dpi](int length) { return (length * dpi + old / 2) / old; };
  form.Dpi = dpi;
  form.SetSize(scaled(form.Bounds.Width()), scaled(form.Bounds.Height()));
}

void TNativeForm::Show() {
  fImpl->Visible = true;
  const std::string kind = Form(*fImpl).Kind == TFormKind::Dialog ? "show dialog " : "show ";
  Machine().Record(kind + Described(fImpl->Bounds));
  Repaint();
}

void TNativeForm::Hide() {
  fImpl->Visible = false;
  Machine().Record("hide dialog");
}

void TNativeForm::SetShutdownReason(TextView reason) const {
  Machine().ShutdownReason = reason;
}

TNativeControl::TNativeControl(TControlKind kind, const TNativeWindow& parent)
    : TNativeWindow(std::make_unique<TControlImpl>(kind, ImplOf(parent))) {}

void TNativeControl::SetBounds(const TRect& bounds) {
  fImpl->Bounds = bounds;
}

void TNativeControl::SetFont(const TFont&, int) {}

void TNativeControl::SetVisible(bool visible) {
  fImpl->Visible = visible;
}

void TNativeControl::Focus() {}

UnicodeString TNativeControl::Text() const {
  return fImpl->Title;
}

TNativeButton::TNativeButton(TButtonRole role, const TNativeWindow& parent, std::function<void()> onClick)
    : TNativeControl(std::make_unique<TButtonImpl>(role, ImplOf(parent), std::move(onClick))) {}

void TNativeButton::SetImage(int) {}
void TNativeButton::SetTextHidden() {}

TNativeBar::TNativeBar(const TNativeWindow& parent)
    : TNativeControl(std::make_unique<TBarImpl>(ImplOf(parent))) {}

void TNativeBar::SetBar(double begin, double end) {
  auto& bar = static_cast<TBarImpl&>(*fImpl);
  bar.Begin = begin;
  bar.End = end;
  bar.Changed = true;
}

namespace headless {

void TDialogScreen::Press(TextView button) {
  PressButton([button](const TButtonImpl& child) { return child.Visible && child.Title == button; });
}

void TDialogScreen::PressEnter() {
  PressButton([](const TButtonImpl& child) { return child.Role == TButtonRole::Default; });
}

void TDialogScreen::PressEscape() {
  Application->Guard(TFormImpl::TopDialog().Events.OnClose);
}

void TDialogScreen::Resize(int width, int height) {
  TFormImpl& dialog = TFormImpl::TopDialog();
  const auto least = [&dialog](int designed) { return ScaledToDpi(designed, dialog.Dpi); };
  Application->Guard([&] {
    dialog.SetSize(std::max(width, least(dialog.LeastWidth)), std::max(height, least(dialog.LeastHeight)));
  });
}

}  // namespace headless
