#include "ui/Application.h"

#include <exception>
#include <new>
#include <utility>

#include "platform/Error.h"
#include "ui/Form.h"

TApplication* Application = nullptr;

namespace {

/// The text of the error that is being handled.
UnicodeString CurrentErrorText() {
  try {
    throw;
  } catch (const EError& error) {
    return error.Message();
  } catch (const std::bad_alloc&) {
    return u"Zu wenig Arbeitsspeicher";
  } catch (const std::exception& error) {
    return u"Interner Fehler: " + TextFromUtf8(error.what());
  } catch (...) {
    return u"Interner Fehler";
  }
}

/// What a box can show: the system ends a text at its first NUL, and makes the box as high as the text.
UnicodeString BoxText(TextView text) {
  constexpr std::size_t kMostCharacters = 2048;
  constexpr int kMostLines = 40;
  UnicodeString shown;
  int lines = 0;
  for (const char16_t c : text) {
    if (c == u'\0') continue;
    const bool newLine = c == u'\r' || (c == u'\n' && !shown.ends_with(u'\r'));
    if (shown.size() == kMostCharacters || (newLine && ++lines == kMostLines)) return shown + u"…";
    shown.push_back(c);
  }
  return shown.empty() ? u"Unbekannter Fehler" : shown;
}

}  // namespace

TApplication::TApplication(TextView title) : fTitle(title) {
  Application = this;
}

TApplication::~TApplication() {
  Application = nullptr;
}

void TApplication::CreateForm(TForm& form) {
  if (fMainForm == nullptr) fMainForm = &form;
  if (form.OnCreate) Guard(form.OnCreate);
}

void TApplication::Run() {
  fMainForm->Show();
  RunMessageLoop();
}

void TApplication::Terminate() {
  fTerminated = true;
  PostQuit();
}

void TApplication::Activate(TForm* form) {
  if (form == fActiveForm) return;
  fActiveForm = form;
  if (form != nullptr && form->OnActivate) Guard(form->OnActivate);
}

void TApplication::Forget(const TForm& form) noexcept {
  if (fMainForm == &form) fMainForm = nullptr;
  if (fActiveForm == &form) fActiveForm = nullptr;
}

void TApplication::MessageBox(TextView text, TBoxIcon icon, TextView caption) {
  const TForm* owner = FrontForm();
  const UnicodeString shown = BoxText(text);
  const struct TPause {
    int& Busy;
    int Before = std::exchange(Busy, 0);
    ~TPause() { Busy = Before; }
  } pause{fBusy};
  ShowMessageBox(owner != nullptr ? &owner->Window() : nullptr, shown, caption, icon);
}

void TApplication::HandleException() noexcept {
  if (fTerminated) return;
  try {
    MessageBox(CurrentErrorText(), TBoxIcon::Error);
  } catch (...) {  // Not even the box can be shown: there is nobody left to tell.
  }
}

TBusyScope::TBusyScope(TextView reason) : fForm(Application->FrontForm()) {
  if (fForm != nullptr) fForm->Window().SetShutdownReason(reason);
  ++Application->fBusy;
}

TBusyScope::~TBusyScope() {
  if (--Application->fBusy > 0) return;
  if (fForm != nullptr) fForm->Window().SetShutdownReason({});
  DiscardInput();
}
