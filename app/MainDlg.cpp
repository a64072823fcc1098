#include "app/MainDlg.h"

#include <utility>

#include "app/CommandLine.h"
#include "app/HostWindow.h"
#include "app/Settings.h"
#include "app/UpdateReport.h"
#include "export/ExportAsmDlg.h"
#include "inventor/DrawingReference.h"
#include "inventor/PropertyUpdate.h"
#include "platform/System.h"
#include "ui/Application.h"

TfrmMain* frmMain = nullptr;

namespace {

// In pixels at kDesignDpi.
constexpr int kClientWidth = 300;
constexpr int kClientHeight = 70;
constexpr int kBevels = 2;
constexpr TRect kPanelBounds{0, 0, kClientWidth, kClientHeight};
constexpr TRect kLabelBounds{kBevels, kBevels, kClientWidth - kBevels, kClientHeight - kBevels};
const TFont kStatusFont{.Name = u"Tahoma", .CharHeight = 16, .Bold = true};

// Half of the designed size. Constants on purpose, not half of the window's current size: the offset from the
// middle of the host is the same on every monitor.
constexpr int kHalfWidth = 150;
constexpr int kHalfHeight = 35;

// A task that shows an error ends the program after the first time; a result stays for the second.
constexpr int kTaskMilliseconds = 3600;
constexpr int kResultMilliseconds = 1500;

constexpr TextView kWriting = u"Ein Dokument wird geschrieben.";

}  // namespace

TfrmMain::TfrmMain()
    : TForm(TFormKind::Status, u"TfrmMain", u"Velmora", kClientWidth, kClientHeight),
      CloseTimer(*this, kTaskMilliseconds),
      clientPanel(*this),
      lbStatus(clientPanel) {
  frmMain = this;
  clientPanel.SetBounds(kPanelBounds);
  clientPanel.SetFont(kStatusFont);
  lbStatus.SetBounds(kLabelBounds);
  lbStatus.SetFont(kStatusFont);
  CloseTimer.OnTimer = [this] { CloseTimerTimer(); };
  OnCreate = [this] { FormCreate(); };
  OnShow = [this] { FormShow(); };
}

TfrmMain::~TfrmMain() {
  frmMain = nullptr;
}

void TfrmMain::FormCreate() {
  ProgrammPfad = ReadProgramFolder();
  EnsureDatabaseFolder(ProgrammPfad);
  ProgrammIni = ProgrammPfad + u"Velmora.ini";
  TIndexSettings settings = ReadIndexSettings(ProgrammIni);
  fIndexProp = std::move(settings.IndexProp);
  fIndexHint = std::move(settings.IndexHint);
  fAutoRemoveHint = settings.AutoRemoveHint;
}

void TfrmMain::FormShow() {
  const TCommandLine arguments(CommandLine());
  // Closing does not stop what follows; without arguments no switch matches and the program ends.
  if (arguments.Count() == 0) Close();
  const TRect host = HostRect(Handle());
  PlaceOver(host);

  const UnicodeString task = arguments.Argument(1);
  const UnicodeString file = arguments.Argument(2);
  if (task == u"/P") RunPropertyUpdate(file, arguments.Argument(3));
  if (task == u"/R") RunReferenceChange(file);
  if (task == u"/E") RunExport(file, host);
  if (task == u"/RI") RunHintRemoval(file);
}

void TfrmMain::PlaceOver(const TRect& rect) {
  ScaleTo(DpiAt(rect));
  MoveTo(rect.Left + rect.Width() / 2 - kHalfWidth, rect.Top + rect.Height() / 2 - kHalfHeight);
}

void TfrmMain::ShowStatus(TextView text) {
  lbStatus.SetCaption(text);
  MakeVisible();
  lbStatus.Repaint();
}

void TfrmMain::RestartCloseTimer() {
  CloseTimer.Disable();
  CloseTimer.SetInterval(kResultMilliseconds);
  CloseTimer.Enable();
}

void TfrmMain::RunPropertyUpdate(const UnicodeString& file, const UnicodeString& listFile) {
  CloseTimer.Enable();
  ShowStatus(u"Properties werden aktualisiert...");
  std::int32_t updated = 0;
  const std::int32_t created = UpdateProperties(file, listFile, updated);
  ShowStatus(UpdateReport(created, updated));
  RestartCloseTimer();
}

void TfrmMain::RunReferenceChange(const UnicodeString& file) {
  CloseTimer.Enable();
  ShowStatus(u"Referenz wird geändert...");
  if (!ChangeDrawingReference(file)) {
    Close();
    return;
  }
  lbStatus.SetCaption(u"IDW Referenz geändert.");
  RestartCloseTimer();
}

void TfrmMain::RunExport(const UnicodeString& file, const TRect& host) {
  CloseTimer.Disable();
  AsmFileName = file;
  ShowStatus(u"");
  {
    TfrmExportAsm dialog(*this);
    dialog.ScaleTo(DpiAt(host));
    dialog.LimitTo(WorkAreaAt(host));
    dialog.CentreOn(host);
    dialog.ShowModal();
  }
  Close();
}

void TfrmMain::RunHintRemoval(const UnicodeString& file) {
  CloseTimer.Enable();
  ShowStatus(u"Indexhinweis wird entfernt...");
  RemoveIndexHint(file);
  RestartCloseTimer();
}

std::int32_t TfrmMain::UpdateProperties(const UnicodeString& fileName, const UnicodeString& listFileName,
                                        std::int32_t& /*updatedCount*/) {
  const TBusyScope busy(kWriting);
  return ::UpdateProperties(fileName, listFileName, {fIndexProp, fIndexHint, fAutoRemoveHint});
}

bool TfrmMain::ChangeDrawingReference(const UnicodeString& fileName) {
  const TBusyScope busy(kWriting);
  return ::ChangeDrawingReference(fileName, [] {
    Application->MessageBox(u"Für diesen Befehl muss die IDW Datei vorher mit Inventor Migriert werden.");
  });
}

bool TfrmMain::RemoveIndexHint(const UnicodeString& fileName) {
  const TBusyScope busy(kWriting);
  return ::RemoveIndexHint(fileName);
}

void TfrmMain::CloseTimerTimer() {
  Close();
}
