#pragma once

#include <functional>

#include "ui/Control.h"

/// How a modal form was closed.
enum class TModalResult { None, Cancel, Abort };

/// A top-level window with its controls. Sizes are designed at kDesignDpi and scaled as a whole; Left and Top
/// are always pixels of the screen. The form's owner keeps it alive; its controls unregister themselves.
class TForm {
 public:
  /// `owner` outlives the form; only a dialog has one.
  TForm(TFormKind kind, TextView className, TextView caption, int clientWidth, int clientHeight,
        TForm* owner = nullptr);
  ~TForm();
  TForm(const TForm&) = delete;
  TForm& operator=(const TForm&) = delete;

  std::function<void()> OnCreate;
  std::function<void()> OnShow;
  /// The form has become the active one among the program's own forms. Coming back from a message box,
  /// another dialog of the system or another program does not count.
  std::function<void()> OnActivate;
  /// A modal form closes.
  std::function<void()> OnClose;

  TWindowHandle Handle() const { return fWindow.Handle(); }
  const TNativeForm& Window() const noexcept { return fWindow; }
  TFormLayout& Layout() noexcept { return fLayout; }
  void SetCaption(TextView caption);
  const UnicodeString& Caption() const noexcept { return fCaption; }

  /// Sizes the form and arranges its controls for a monitor with `dpi`; Left and Top stay.
  void ScaleTo(int dpi);
  void MoveTo(int left, int top);
  /// Makes the form, with its frame, no larger than `area`; Left and Top stay.
  void LimitTo(const TRect& area);
  /// Puts the middle of the form, with its frame, on the middle of `rect`.
  void CentreOn(const TRect& rect);
  /// In pixels at kDesignDpi.
  void SetLeastClientSize(int width, int height) { fWindow.SetLeastClientSize(width, height); }

  /// Runs OnShow, hands an error in it to the application, and makes the form visible if it is not yet.
  void Show();
  /// Puts the form on the screen at its place and paints it; without effect when it is visible.
  void MakeVisible();
  /// Shows the form, and returns when it has been closed or the program ends. Errors in its events go to the
  /// application.
  TModalResult ShowModal();
  /// Asks nothing. Closing the main form ends the program; a modal form ends with Cancel unless it has a
  /// result.
  void Close();
  /// Closes a modal form.
  void EndModal(TModalResult result) noexcept { fModalResult = result; }

 private:
  void Sized(int width, int height, int dpi);

  TFormLayout fLayout;
  TNativeForm fWindow;
  UnicodeString fCaption;
  bool fVisible = false;
  TModalResult fModalResult = TModalResult::None;
};
