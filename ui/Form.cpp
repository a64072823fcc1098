#include "ui/Form.h"

#include "ui/Application.h"
#include "ui/Controls.h"

TForm::TForm(TWindowKind kind, TextView className, TextView caption, int clientWidth, int clientHeight)
    : fWindow(kind, className, nullptr,
              {.OnClose = [this] { Close(); }, .OnDpiChanged = [this](int dpi) { ScaleTo(dpi); }}),
      fClientWidth(clientWidth),
      fClientHeight(clientHeight) {
  fWindow.SetText(caption);
  ApplyBounds();
}

TForm::~TForm() {
  if (Application == nullptr) return;
  if (Application->fMainForm == this) Application->fMainForm = nullptr;
  if (Application->fActiveForm == this) Application->fActiveForm = nullptr;
}

void TForm::ApplyBounds() {
  fWindow.SetBounds(
      {fLeft, fTop, fLeft + ScaledToDpi(fClientWidth, fDpi), fTop + ScaledToDpi(fClientHeight, fDpi)});
}

void TForm::ScaleTo(int dpi) {
  if (dpi == fDpi) return;
  fDpi = dpi;
  ApplyBounds();
  for (TControl* control : fControls) control->Layout();
}

void TForm::MoveTo(int left, int top) {
  fLeft = left;
  fTop = top;
  ApplyBounds();
}

void TForm::Show() {
  Application->fActiveForm = this;
  if (OnShow) Application->Guard(OnShow);
  if (!Application->Terminated()) MakeVisible();
}

void TForm::MakeVisible() {
  if (fVisible) return;
  fVisible = true;
  fWindow.Show();
}

void TForm::Close() {
  if (Application->fMainForm == this) Application->Terminate();
}
