#pragma once

#include <vector>

#include "ui/NativeWindow.h"

class TControl;

/// The sides of the form with which a control's sides move when the form's size changes.
struct TAnchors {
  bool Left = true;
  bool Top = true;
  bool Right = false;
  bool Bottom = false;
};

/// The controls of a form, and the size and scale that place them. Owned by the form.
struct TFormLayout {
  int DesignedWidth;  // of the client area, at kDesignDpi
  int DesignedHeight;
  int Width = DesignedWidth;  // now, in pixels
  int Height = DesignedHeight;
  int Dpi = kDesignDpi;
  std::vector<TControl*> Controls{};

  /// A place in the designed client area, as it is now.
  TRect Placed(const TRect& designed, TAnchors anchors) const;
};

/// A control of a form: its designed place and font. The form and the parent outlive it (members of the same
/// form, declared in this order); what draws it is the derived class's own.
class TControl {
 public:
  TControl(const TControl&) = delete;
  TControl& operator=(const TControl&) = delete;

  /// In the parent's client area, in pixels at kDesignDpi and for the form's designed size.
  void SetBounds(const TRect& designed, TAnchors anchors = {});
  void SetFont(const TFont& font);
  void SetVisible(bool visible);
  /// Makes it the one that gets the keys.
  void SetFocus();

  /// Follows the form's size and scale.
  void Arrange();

  TFormLayout& Layout() noexcept { return fLayout; }
  virtual TNativeControl& Window() noexcept = 0;

 protected:
  explicit TControl(TFormLayout& layout);
  virtual ~TControl();

  const TFont& Font() const noexcept { return fFont; }
  int Dpi() const noexcept { return fLayout.Dpi; }

  /// Called when place, font or scale of the control have been set.
  virtual void Arranged() {}

 private:
  void ApplyBounds();
  void ApplyFont();

  TFormLayout& fLayout;
  TRect fDesigned;
  TAnchors fAnchors;
  TFont fFont;
  int fFontDpi = 0;  // the scale for which the window has got its font; 0: none yet
};
