#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Dispatch.h"
#include "platform/Geometry.h"
#include "platform/Text.h"

namespace headless {

/// A window of the scripted desktop. Windows of the program itself are entered while they live.
struct TDesktopWindow {
  UnicodeString Title;
  TRect Bounds;
};

/// Everything that the program can see of a machine without Windows, and what it did there. Tests fill it in
/// before they run the program; file names like "C:\Projekt\Teil.ipt" are below Root (C/Projekt/Teil.ipt).
struct TMachine {
  std::filesystem::path Root;
  UnicodeString CommandLine;
  std::map<UnicodeString, UnicodeString, std::less<>> Environment;
  UnicodeString ComputerName = u"PC-01";
  std::optional<UnicodeString> DesktopFolder =
      u"C:\\Users\\Größe\\Desktop";          ///< nothing: the shell cannot tell
  std::optional<std::string> StandardInput;  ///< nothing: the process has none

  std::vector<TDesktopWindow*> ZOrder;  ///< topmost first; not owned
  TRect WorkArea{0, 0, 1280, 1024};
  int Dpi = kDesignDpi;
  bool HourGlass = false;        ///< the mouse cursor over the program's windows
  UnicodeString ShutdownReason;  ///< what a user reads who signs out now

  /// Creates the class and answers for the interface; empty: no class is registered. Throws what a failed
  /// creation throws.
  std::function<TDispatch(const TGuid& clsid, const TGuid& iid)> CreateInstance;

  /// The only clock, in milliseconds. It moves when the message loop waits, or when a test moves it.
  std::int64_t Now = 0;
  /// For each message box in turn: after how long the user presses OK. Nothing, or a deque that has run out:
  /// never.
  std::deque<std::optional<int>> PressOkAfter;

  /// For each save dialog in turn: the name that the user chooses; nothing, or a deque that has run out: he
  /// cancels.
  std::deque<std::optional<UnicodeString>> SaveAnswers;
  /// Files that another program has open, and until when: no removing, renaming, copying over them.
  std::map<UnicodeString, std::int64_t, std::less<>> HeldUntil;
  /// What the user does while a dialog is open, one after the other.
  std::deque<std::function<void()>> UserActions;

  /// The call of files, system or windows that fails, counted from 1; 0: none.
  std::int64_t FailCall = 0;
  std::int64_t CallCount = 0;
  std::string FailedCall;  ///< its name, once it has failed

  /// What the user could see, each line with the time: windows, painted texts, boxes. UTF-8.
  std::vector<std::string> Log;

  void Record(const std::string& line) { Log.push_back(std::to_string(Now) + " " + line); }
};

TMachine& Machine();

/// Counts a call of the back end; true when it is the one that is to fail.
bool Fails(const char* call);
/// The same for a call that reports its failure as an error: throws one of the kind InputOutput.
void ThrowIfFails(const char* call);

/// Where a file of the program is on this machine.
std::filesystem::path HostPath(TextView path);

}  // namespace headless
