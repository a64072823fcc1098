#pragma once

#include "ui/NativeWindow.h"

class TForm;

/// A control of a form: its designed place and font, and the window that draws it. The form and the parent
/// outlive it (members of the same form, declared in this order).
class TControl {
 public:
  TControl(const TControl&) = delete;
  TControl& operator=(const TControl&) = delete;

  /// In the parent's client area, in pixels at kDesignDpi.
  void SetBounds(const TRect& designed);
  void SetFont(const TFont& font);

  /// Puts the form on the screen if it is not there yet and paints the control, with its parent, before it
  /// returns.
  void Repaint();

 protected:
  TControl(TWindowKind kind, TForm& form);
  TControl(TWindowKind kind, TControl& parent);
  virtual ~TControl();

  TNativeWindow& Window() noexcept { return fWindow; }
  const TFont& Font() const noexcept { return fFont; }
  int Dpi() const noexcept;

  /// Called when place, font or scale of the control have been set.
  virtual void Arranged() {}

 private:
  friend class TForm;
  TControl(TWindowKind kind, TForm& form, TNativeWindow& parent);
  void Layout();
  void ApplyBounds();
  void ApplyFont();

  TForm& fForm;
  TNativeWindow& fParentWindow;
  TNativeWindow fWindow;
  TRect fDesigned;
  TFont fFont;
};

/// A surface with a lowered outer and a raised inner bevel.
class TPanel : public TControl {
 public:
  explicit TPanel(TForm& form);
};

/// A text centred in its place and never wrapped; a carriage return begins a new line.
class TLabel : public TControl {
 public:
  explicit TLabel(TControl& parent);

  /// Painted by the message loop; call Repaint for a text that must stand there before a long piece of work.
  void SetCaption(TextView caption);
};
