#include "ui/Form.h"

#include <optional>

#include "platform/DesktopWindows.h"
#include "ui/Application.h"
#include "ui/Controls.h"

TForm::TForm(TWindowKind kind, TextView className, TextView caption, int clientWidth, int clientHeight,
             TForm* owner)
    : fWindow(kind, className, owner != nullptr ? &owner->fWindow : nullptr,
              {.OnClose = [this] { Close(); },
               .OnDpiChanged = [this](int dpi) { ScaleTo(dpi); },
               .OnSized = [this](int width, int height) { Sized(width, height); },
               .OnClick = {}}),
      fDesignedWidth(clientWidth),
      fDesignedHeight(clientHeight),
      fClientWidth(clientWidth),
      fClientHeight(clientHeight) {
  SetCaption(caption);
  fWindow.SetClientSize(fClientWidth, fClientHeight, fDpi);
}

TForm::~TForm() {
  if (Application != nullptr) Application->Forget(*this);
}

void TForm::SetCaption(TextView caption) {
  fCaption = caption;
  fWindow.SetText(caption);
}

void TForm::ScaleTo(int dpi) {
  if (dpi == fDpi) return;
  // What the user has made of the size keeps its proportion.
  const auto scaled = [this, dpi](int length) { return (length * dpi + fDpi / 2) / fDpi; };
  const int width = scaled(fClientWidth);
  const int height = scaled(fClientHeight);
  fDpi = dpi;
  SetLeastClientSize(fLeastWidth, fLeastHeight);
  // Before the window hears of it: the system makes no window larger than the screen, and Sized tells then.
  fClientWidth = width;
  fClientHeight = height;
  fWindow.SetClientSize(width, height, dpi);
  LayoutControls();
}

void TForm::Sized(int width, int height) {
  if (width == fClientWidth && height == fClientHeight) return;
  fClientWidth = width;
  fClientHeight = height;
  LayoutControls();
}

void TForm::LayoutControls() {
  for (TControl* control : fControls) control->Layout();
}

void TForm::SetLeastClientSize(int width, int height) {
  fLeastWidth = width;
  fLeastHeight = height;
  fWindow.SetLeastClientSize(ScaledToDpi(width, fDpi), ScaledToDpi(height, fDpi), fDpi);
}

void TForm::MoveTo(int left, int top) {
  fWindow.SetPosition(left, top);
}

void TForm::CentreOn(const TRect& rect) {
  const TRect own = WindowRect(Handle()).value_or(TRect());
  MoveTo(rect.Left + rect.Width() / 2 - own.Width() / 2, rect.Top + rect.Height() / 2 - own.Height() / 2);
}

void TForm::Show() {
  if (OnShow) Application->Guard(OnShow);
  if (Application->Terminated()) return;
  MakeVisible();
  Application->Activate(this);
}

void TForm::MakeVisible() {
  if (fVisible) return;
  fVisible = true;
  fWindow.Show();
}

TModalResult TForm::ShowModal() {
  TForm* const previous = Application->ActiveForm();
  fModalResult = TModalResult::None;
  Show();
  RunModalLoop(fWindow, [this] { return fModalResult != TModalResult::None; });
  if (OnClose) Application->Guard(OnClose);
  fWindow.Hide();
  fVisible = false;
  Application->Activate(previous);
  return fModalResult;
}

void TForm::Close() {
  if (Application->IsMainForm(*this)) {
    Application->Terminate();
  } else if (fModalResult == TModalResult::None) {
    EndModal(TModalResult::Cancel);
  }
}
