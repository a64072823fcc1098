#pragma once

#include <functional>

#include "ui/Form.h"
#include "ui/NativeWindow.h"

/// The sides of the form with which a control's sides move when the form's size changes.
struct TAnchors {
  bool Left = true;
  bool Top = true;
  bool Right = false;
  bool Bottom = false;
};

/// A control of a form: its designed place and font, and the window that draws it. The form and the parent
/// outlive it (members of the same form, declared in this order).
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

  /// Puts the form on the screen if it is not there yet and paints the control, with its parent, before it
  /// returns.
  void Repaint();

 protected:
  TControl(TWindowKind kind, TForm& form, TWindowEvents events = {});
  TControl(TWindowKind kind, TControl& parent);
  virtual ~TControl();

  TNativeWindow& Window() noexcept { return fWindow; }
  TForm& Form() noexcept { return fForm; }
  const TFont& Font() const noexcept { return fFont; }
  int Dpi() const noexcept;

  /// Called when place, font or scale of the control have been set.
  virtual void Arranged() {}

 private:
  friend class TForm;
  TControl(TWindowKind kind, TForm& form, TNativeWindow& parent, TWindowEvents events);
  void Layout();
  void ApplyBounds();
  void ApplyFont();

  TForm& fForm;
  TNativeWindow& fParentWindow;
  TNativeWindow fWindow;
  TRect fDesigned;
  TAnchors fAnchors;
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

/// A line of text to type in.
class TEdit : public TControl {
 public:
  explicit TEdit(TForm& form);

  void SetText(TextView text);
  UnicodeString Text() { return Window().Text(); }
};

enum class TButtonRole { Plain, Default };

/// A push button. One with a modal result also closes its form with it.
class TButton : public TControl {
 public:
  explicit TButton(TForm& form, TButtonRole role = TButtonRole::Plain);

  std::function<void()> OnClick;
  TModalResult ModalResult = TModalResult::None;

  void SetCaption(TextView caption);
  void SetImage(TButtonImage image);
  /// Shows the image alone; `hint` is its tool tip, and its name for a screen reader.
  void SetImageOnly(TButtonImage image, TextView hint);

 private:
  void Click();
};
