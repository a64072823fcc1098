#include "app/MainDlg.h"
#include "platform/Dispatch.h"
#include "platform/System.h"
#include "ui/Application.h"

/// Sets no exit code of its own: the host reads results from the files alone.
int ProgramMain() {
  const TComApartment apartment;
  TApplication application(u"Velmora");
  application.Guard([&application] {
    TfrmMain form;
    application.CreateForm(form);
    application.Run();
  });
  return 0;
}
