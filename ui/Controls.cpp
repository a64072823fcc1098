#include "ui/Controls.h"

#include "ui/Application.h"

TPanel::TPanel(TForm& form) : TControl(form.Layout()), fWindow(TControlKind::Panel, form.Window()) {}

TLabel::TLabel(TControl& parent) : TControl(parent.Layout()), fWindow(TControlKind::Label, parent.Window()) {}

TEdit::TEdit(TForm& form) : TControl(form.Layout()), fWindow(TControlKind::Edit, form.Window()) {}

TButton::TButton(TForm& form, TButtonRole role)
    : TControl(form.Layout()), fForm(form), fWindow(role, form.Window(), [this] { Click(); }) {}

void TButton::SetImageOnly(int icon, TextView hint) {
  fWindow.SetImage(icon);
  fWindow.SetText(hint);
  fWindow.SetTextHidden();
}

void TButton::Click() {
  // Another program's message can come while the first click still has a dialog open.
  if (Application->Busy() || fClicking) return;
  fClicking = true;
  if (ModalResult != TModalResult::None) fForm.EndModal(ModalResult);
  if (OnClick) Application->Guard(OnClick);
  fClicking = false;
}
