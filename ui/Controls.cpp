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
  if (Application->Busy()) return;
  if (ModalResult != TModalResult::None) fForm.EndModal(ModalResult);
  if (OnClick) OnClick();
}
