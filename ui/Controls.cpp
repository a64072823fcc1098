#include "ui/Controls.h"

#include <vector>

#include "ui/Form.h"

TControl::TControl(TWindowKind kind, TForm& form) : TControl(kind, form, form.fWindow) {}

TControl::TControl(TWindowKind kind, TControl& parent) : TControl(kind, parent.fForm, parent.fWindow) {}

TControl::TControl(TWindowKind kind, TForm& form, TNativeWindow& parent)
    : fForm(form), fParentWindow(parent), fWindow(kind, {}, &parent) {
  fForm.fControls.push_back(this);
}

TControl::~TControl() {
  std::erase(fForm.fControls, this);
}

void TControl::SetBounds(const TRect& designed) {
  fDesigned = designed;
  ApplyBounds();
  Arranged();
}

void TControl::SetFont(const TFont& font) {
  fFont = font;
  ApplyFont();
  Arranged();
}

void TControl::Layout() {
  ApplyBounds();
  ApplyFont();
  Arranged();
}

int TControl::Dpi() const noexcept {
  return fForm.fDpi;
}

void TControl::ApplyBounds() {
  const auto scaled = [dpi = fForm.fDpi](int length) { return ScaledToDpi(length, dpi); };
  fWindow.SetBounds(
      {scaled(fDesigned.Left), scaled(fDesigned.Top), scaled(fDesigned.Right), scaled(fDesigned.Bottom)});
}

void TControl::ApplyFont() {
  fWindow.SetFont(fFont, fForm.fDpi);
}

void TControl::Repaint() {
  fForm.MakeVisible();
  fParentWindow.Repaint();
}

TPanel::TPanel(TForm& form) : TControl(TWindowKind::Panel, form) {}

TLabel::TLabel(TControl& parent) : TControl(TWindowKind::Label, parent) {}

void TLabel::SetCaption(TextView caption) {
  Window().SetText(caption);
}
