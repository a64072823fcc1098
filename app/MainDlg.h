#pragma once

#include <cstdint>

#include "app/CommandLine.h"
#include "inventor/IndexHint.h"
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

  UnicodeString AsmFileName;   ///< the assembly that /E exports
  UnicodeString ProgrammPfad;  ///< per-user folder, with a backslash at its end
  UnicodeString ProgrammIni;   ///< settings file

 private:
  void FormCreate();
  void FormShow();
  void CloseTimerTimer();

  void PlaceOver(const TRect& rect);
  void RunPropertyUpdate(const UnicodeString& file, const UnicodeString& listFile);
  void RunReferenceChange(const UnicodeString& file);
  void RunHintRemoval(const UnicodeString& file);

  /// Shows the text at once: the task that follows blocks the message loop.
  void ShowStatus(TextView text);
  /// Starts the count-down anew, so that the result can be read before the window closes.
  void RestartCloseTimer();

  std::int32_t UpdateProperties(const UnicodeString& fileName, const UnicodeString& listFileName,
                                std::int32_t& updatedCount);
  bool ChangeDrawingReference(const UnicodeString& fileName);
  bool RemoveIndexHint(const UnicodeString& fileName);

  TTimer CloseTimer;
  TPanel clientPanel;
  TLabel lbStatus;
  UnicodeString fIndexProp;
  UnicodeString fIndexHint;
  bool fAutoRemoveHint = true;
};

/// The status window while it lives.
extern TfrmMain* frmMain;
