#include "ui/Application.h"

#include <exception>
#include <new>

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
  const TForm* owner = fActiveForm != nullptr ? fActiveForm : fMainForm;
  ShowMessageBox(owner != nullptr ? &owner->Window() : nullptr, text, caption, icon);
}

void TApplication::HandleException() noexcept {
  if (fTerminated) return;
  try {
    MessageBox(CurrentErrorText(), TBoxIcon::Error);
  } catch (...) {  // Not even the box can be shown: there is nobody left to tell.
  }
}
