#pragma once

#include <functional>

#include "ui/Form.h"

/// A surface with a lowered outer and a raised inner bevel.
class TPanel : public TControl {
 public:
  explicit TPanel(TForm& form);
  TNativeControl& Window() noexcept override { return fWindow; }

 private:
  TNativeControl fWindow;
};

/// A text centred in its place and never wrapped; a carriage return begins a new line.
class TLabel : public TControl {
 public:
  explicit TLabel(TControl& parent);
  TNativeControl& Window() noexcept override { return fWindow; }

  /// Painted by the message loop; call Repaint for a text that must be seen before a long piece of work.
  void SetCaption(TextView caption) { fWindow.SetText(caption); }
  void Repaint() { fWindow.Repaint(); }

 private:
  TNativeControl fWindow;
};

/// A line of text to type in.
class TEdit : public TControl {
 public:
  explicit TEdit(TForm& form);
  TNativeControl& Window() noexcept override { return fWindow; }

  void SetText(TextView text) { fWindow.SetText(text); }
  UnicodeString Text() const { return fWindow.Text(); }

 private:
  TNativeControl fWindow;
};

/// A push button. One with a modal result also closes its form with it.
class TButton : public TControl {
 public:
  explicit TButton(TForm& form, TButtonRole role = TButtonRole::Plain);
  TNativeControl& Window() noexcept override { return fWindow; }

  std::function<void()> OnClick;
  TModalResult ModalResult = TModalResult::None;

  void SetCaption(TextView caption) { fWindow.SetText(caption); }
  /// A number of resources/Icons.h.
  void SetImage(int icon) { fWindow.SetImage(icon); }
  /// Shows the image alone; `hint` is its tool tip, and its name for a screen reader.
  void SetImageOnly(int icon, TextView hint);

 private:
  void Click();

  TForm& fForm;
  bool fClicking = false;
  TNativeButton fWindow;
};
