#include "ui/Controls.h"

#include <utility>
#include <vector>

#include "ui/Application.h"

TControl::TControl(TWindowKind kind, TForm& form, TWindowEvents events)
    : TControl(kind, form, form.fWindow, std::move(events)) {}

TControl::TControl(TWindowKind kind, TControl& parent) : TControl(kind, parent.fForm, parent.fWindow, {}) {}

TControl::TControl(TWindowKind kind, TForm& form, TNativeWindow& parent, TWindowEvents events)
    : fForm(form), fParentWindow(parent), fWindow(kind, {}, &parent, std::move(events)) {
  fForm.fControls.push_back(this);
}

TControl::~TControl() {
  std::erase(fForm.fControls, this);
}

void TControl::SetBounds(const TRect& designed, TAnchors anchors) {
  fDesigned = designed;
  fAnchors = anchors;
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
  TRect bounds{scaled(fDesigned.Left), scaled(fDesigned.Top), scaled(fDesigned.Right),
               scaled(fDesigned.Bottom)};
  const int wider = fForm.fClientWidth - scaled(fForm.fDesignedWidth);
  const int higher = fForm.fClientHeight - scaled(fForm.fDesignedHeight);
  if (!fAnchors.Left) bounds.Left += wider;
  if (fAnchors.Right) bounds.Right += wider;
  if (!fAnchors.Top) bounds.Top += higher;
  if (fAnchors.Bottom) bounds.Bottom += higher;
  fWindow.SetBounds(bounds);
}

void TControl::ApplyFont() {
  fWindow.SetFont(fFont, fForm.fDpi);
}

void TControl::SetVisible(bool visible) {
  fWindow.SetVisible(visible);
}

void TControl::SetFocus() {
  fWindow.Focus();
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

TEdit::TEdit(TForm& form) : TControl(TWindowKind::Edit, form) {}

void TEdit::SetText(TextView text) {
  Window().SetText(text);
}

TButton::TButton(TForm& form, TButtonRole role)
    : TControl(role == TButtonRole::Default ? TWindowKind::DefaultButton : TWindowKind::Button, form,
               {.OnClose = {}, .OnDpiChanged = {}, .OnSized = {}, .OnClick = [this] { Click(); }}) {}

void TButton::SetCaption(TextView caption) {
  Window().SetText(caption);
}

void TButton::SetImage(TButtonImage image) {
  Window().SetImage(image);
}

void TButton::SetImageOnly(TButtonImage image, TextView hint) {
  Window().SetImage(image);
  Window().SetText(hint);
  Window().SetTextHidden();
}

void TButton::Click() {
  if (Application->Busy()) return;
  if (ModalResult != TModalResult::None) Form().EndModal(ModalResult);
  if (OnClick) OnClick();
}
