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

  /// A box with the button OK and the program's title, above the active form.
  void MessageBox(TextView text, TBoxIcon icon = TBoxIcon::None);

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
  friend class TForm;

  UnicodeString fTitle;
  TForm* fMainForm = nullptr;
  // A variable of ours, not the system's activation: coming back from another program is no change of form.
  TForm* fActiveForm = nullptr;
  bool fTerminated = false;
};

extern TApplication* Application;
