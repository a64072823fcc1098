#pragma once

#include <functional>
#include <vector>

#include "ui/NativeWindow.h"

class TControl;

/// A top-level window with its controls. Sizes are designed at kDesignDpi and scaled as a whole; Left and Top
/// are always pixels of the screen. The form's owner keeps it alive; its controls unregister themselves.
class TForm {
 public:
  TForm(TWindowKind kind, TextView className, TextView caption, int clientWidth, int clientHeight);
  ~TForm();
  TForm(const TForm&) = delete;
  TForm& operator=(const TForm&) = delete;

  std::function<void()> OnCreate;
  std::function<void()> OnShow;

  TWindowHandle Handle() const { return fWindow.Handle(); }
  const TNativeWindow& Window() const noexcept { return fWindow; }

  /// Sizes the form and lays out its controls for a monitor with `dpi`; Left and Top stay.
  void ScaleTo(int dpi);
  void MoveTo(int left, int top);

  /// Runs OnShow, hands an error in it to the application, and makes the form visible if it is not yet.
  void Show();
  /// Puts the form on the screen where it stands now; without effect when it is visible.
  void MakeVisible();
  /// Asks nothing. Closing the main form ends the program; no other form can be closed yet.
  void Close();

 private:
  friend class TControl;
  void ApplyBounds();

  TNativeWindow fWindow;
  std::vector<TControl*> fControls;
  int fClientWidth;
  int fClientHeight;
  int fLeft = 0;
  int fTop = 0;
  int fDpi = kDesignDpi;
  bool fVisible = false;
};
