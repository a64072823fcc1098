#include "ui/Control.h"

TRect TFormLayout::Placed(const TRect& designed, TAnchors anchors) const {
  const auto scaled = [this](int length) { return ScaledToDpi(length, Dpi); };
  TRect placed{scaled(designed.Left), scaled(designed.Top), scaled(designed.Right), scaled(designed.Bottom)};
  const int wider = Width - scaled(DesignedWidth);
  const int higher = Height - scaled(DesignedHeight);
  if (!anchors.Left) placed.Left += wider;
  if (anchors.Right) placed.Right += wider;
  if (!anchors.Top) placed.Top += higher;
  if (anchors.Bottom) placed.Bottom += higher;
  return placed;
}

TControl::TControl(TFormLayout& layout) : fLayout(layout) {
  fLayout.Controls.push_back(this);
}

TControl::~TControl() {
  std::erase(fLayout.Controls, this);
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

void TControl::Arrange() {
  ApplyBounds();
  if (fFontDpi != fLayout.Dpi) ApplyFont();
  Arranged();
}

void TControl::ApplyBounds() {
  Window().SetBounds(fLayout.Placed(fDesigned, fAnchors));
}

void TControl::ApplyFont() {
  Window().SetFont(fFont, fLayout.Dpi);
  fFontDpi = fLayout.Dpi;
}

void TControl::SetVisible(bool visible) {
  Window().SetVisible(visible);
}

void TControl::SetFocus() {
  Window().Focus();
}
