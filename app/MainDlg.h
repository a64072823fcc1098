#pragma once

#include <cstdint>

#include "platform/Text.h"
#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/Timer.h"

/// The status window: reads the settings when it is created, runs the task that the command line names when
/// it is shown, and ends the program when it is closed. Holds the settings and arguments of the run; keeps
/// nothing of the component.
class TfrmMain : public TForm {
 public:
  TfrmMain();
  ~TfrmMain();

  TTimer CloseTimer;
  TPanel clientPanel;
  TLabel lbStatus;

  void FormCreate();
  void FormShow();
  void CloseTimerTimer();

 private:
  void PlaceOver(const TRect& rect);
  void RunPropertyUpdate(const UnicodeString& file, const UnicodeString& listFile);
  void RunReferenceChange(const UnicodeString& file);
  /// Opens the export dialog over the middle of `host` and returns when it has been closed.
  void RunExport(const UnicodeString& file, const TRect& host);
  void RunHintRemoval(const UnicodeString& file);

  /// Shows the text at once: the task that follows blocks the message loop.
  void ShowStatus(TextView text);
  /// Starts the count-down anew, so that the result can be read before the window closes.
  void RestartCloseTimer();

  /// Leaves `updatedCount` as the caller set it: updates are not counted.
  std::int32_t UpdateProperties(const UnicodeString& fileName, const UnicodeString& listFileName,
                                std::int32_t& updatedCount);
  bool ChangeDrawingReference(const UnicodeString& fileName);
  bool RemoveIndexHint(const UnicodeString& fileName);

  UnicodeString fIndexProp;
  UnicodeString fIndexHint;
  bool fAutoRemoveHint = true;

 public:
  UnicodeString AsmFileName;   ///< the assembly that /E exports
  UnicodeString ProgrammPfad;  ///< per-user folder, with a backslash at its end
  UnicodeString ProgrammIni;   ///< settings file
};

/// The status window while it lives.
extern TfrmMain* frmMain;
