#include "ui/Form.h"

#include <algorithm>

#include "platform/DesktopWindows.h"
#include "ui/Application.h"

TForm::TForm(TFormKind kind, TextView className, TextView caption, int clientWidth, int clientHeight,
             TForm* owner)
    : fLayout{.DesignedWidth = clientWidth, .DesignedHeight = clientHeight},
      fWindow(kind, className, owner != nullptr ? &owner->fWindow : nullptr,
              {.OnClose = [this] { Close(); },
               .OnSized = [this](int width, int height, int dpi) { Sized(width, height, dpi); }}) {
  SetCaption(caption);
  fWindow.SetClientSize(clientWidth, clientHeight);
}

TForm::~TForm() {
  if (Application != nullptr) Application->Forget(*this);
}

void TForm::SetCaption(TextView caption) {
  fCaption = caption;
  fWindow.SetText(caption);
}

void TForm::ScaleTo(int dpi) {
  if (dpi != fLayout.Dpi) fWindow.ScaleTo(dpi);
}

void TForm::Sized(int width, int height, int dpi) {
  if (width == fLayout.Width && height == fLayout.Height && dpi == fLayout.Dpi) return;
  fLayout.Width = width;
  fLayout.Height = height;
  fLayout.Dpi = dpi;
  for (TControl* control : fLayout.Controls) control->Arrange();
}

void TForm::MoveTo(int left, int top) {
  fWindow.SetPosition(left, top);
}

void TForm::LimitTo(const TRect& area) {
  const TRect own = WindowRect(Handle()).value_or(TRect());
  const int tooWide = std::max(own.Width() - area.Width(), 0);
  const int tooHigh = std::max(own.Height() - area.Height(), 0);
  fWindow.SetClientSize(fLayout.Width - tooWide, fLayout.Height - tooHigh);
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
