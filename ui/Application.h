#pragma once

#include "platform/Text.h"
#include "ui/MessageLoop.h"

class TForm;

/// The running program: its title, its main form, its message loop and the default handling of errors. One
/// instance, made by the program module; `Application` points to it while it lives. Owns no form.
class TApplication {
 public:
  explicit TApplication(TextView title);
  ~TApplication();
  TApplication(const TApplication&) = delete;
  TApplication& operator=(const TApplication&) = delete;

  /// Runs the form's create event. The first form becomes the main form, whose closing ends the program.
  void CreateForm(TForm& form);
  /// Shows the main form and handles messages until Terminate.
  void Run();

  /// Asks the message loop to end. What runs at the moment runs on.
  void Terminate();
  bool Terminated() const noexcept { return fTerminated; }

  TForm* ActiveForm() const noexcept { return fActiveForm; }
  /// The form becomes the active one and hears of it, unless it is already; null: none is.
  void Activate(TForm* form);
  bool IsMainForm(const TForm& form) const noexcept { return &form == fMainForm; }
  /// The form goes: neither main nor active form any more.
  void Forget(const TForm& form) noexcept;

  /// True within a TBusyScope: a long piece of work runs inside an event, and no other event may begin.
  bool Busy() const noexcept { return fBusy > 0; }

  /// A box with the button OK and the program's title, above the active form. While it is open the program is
  /// not busy. A text that would fill the screen is cut.
  void MessageBox(TextView text, TBoxIcon icon = TBoxIcon::None) { MessageBox(text, icon, fTitle); }
  void MessageBox(TextView text, TBoxIcon icon, TextView caption);

  /// The default handling of an error, to be called in a catch block: its text in a box with the error icon.
  /// A program that is already ending shows nothing more.
  void HandleException() noexcept;

  /// Runs an event handler; no error leaves it.
  template <class THandler>
  void Guard(THandler&& handler) noexcept {
    try {
      handler();
    } catch (...) {
      HandleException();
    }
  }

 private:
  friend class TBusyScope;

  /// The form that the user works with; null before the first one.
  const TForm* FrontForm() const noexcept { return fActiveForm != nullptr ? fActiveForm : fMainForm; }

  UnicodeString fTitle;
  TForm* fMainForm = nullptr;
  // A variable of ours, not the system's activation: coming back from another program is no change of form.
  TForm* fActiveForm = nullptr;
  bool fTerminated = false;
  int fBusy = 0;
};

extern TApplication* Application;

/// Around a long piece of work in an event. What the user types and clicks meanwhile is dropped at the end,
/// what other programs send is dropped at once, and signing out is asked to wait.
class TBusyScope {
 public:
  /// `reason` tells the user who signs out what is being done.
  explicit TBusyScope(TextView reason);
  ~TBusyScope();
  TBusyScope(const TBusyScope&) = delete;
  TBusyScope& operator=(const TBusyScope&) = delete;

 private:
  const TForm* fForm;
};
