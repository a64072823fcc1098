#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

/// The path of a file that the build puts beside the tests.
std::wstring BuiltPath(const std::wstring& file);

/// Waits until `condition` holds, at most `milliseconds`; returns whether it does.
bool WaitUntil(const std::function<bool()>& condition, DWORD milliseconds = 20'000);

std::wstring TextOf(HWND window);
/// What a message box says.
std::wstring MessageOf(HWND box);
/// A message box has the control for its icon in any case; without an icon it is empty.
bool HasIcon(HWND box);
RECT BoundsOf(HWND window);
bool SameRect(const RECT& a, const RECT& b);

/// A window of the host application, drawn by nobody: what matters is its title, its place and its Z order.
class THostWindow {
 public:
  THostWindow(const wchar_t* title, RECT bounds, bool visible = true);
  ~THostWindow() { ::DestroyWindow(fWindow); }
  THostWindow(const THostWindow&) = delete;
  THostWindow& operator=(const THostWindow&) = delete;

  HWND Handle() const { return fWindow; }

 private:
  HWND fWindow;
};

/// One run of the real executable.
class TProgram {
 public:
  using TEnvironment = std::map<std::wstring, std::wstring>;

  /// Starts it with `arguments` unchanged and with changes to the environment. Without the
  /// path of a file for it the process has no standard input.
  TProgram(const std::wstring& arguments, const TEnvironment& changes,
           const std::optional<std::wstring>& standardInput = {});
  ~TProgram();
  TProgram(const TProgram&) = delete;
  TProgram& operator=(const TProgram&) = delete;

  /// The status window once it is visible; null when it does not come.
  HWND StatusWindow() const { return VisibleWindow(L"TfrmMain"); }
  /// The text of its label.
  std::wstring StatusText() const;
  bool WaitForStatus(const std::wstring& text) const;
  /// A message box of the program once it is open; null when it does not come.
  HWND MessageBox() const { return VisibleWindow(L"#32770", L"Velmora"); }
  /// What its message box says; presses OK and waits until it has gone.
  std::wstring TextOfClosedBox() const;
  /// A top-level window of the program once it is visible, of any title unless one is given; null when it
  /// does not come.
  HWND VisibleWindow(const wchar_t* className, const wchar_t* title = nullptr) const;

  bool HasEnded() const { return ::WaitForSingleObject(fProcess.Get(), 0) == WAIT_OBJECT_0; }
  /// Nothing when it does not end by itself.
  std::optional<DWORD> WaitForExit() const;

 private:
  HWND FindOwnWindow(const wchar_t* className, const wchar_t* title = nullptr) const;

  TFileHandle fProcess;
  DWORD fId = 0;
};

/// The export dialog of a running program, looked at and used from outside.
class TExportDialog {
 public:
  /// Waits for the dialog.
  explicit TExportDialog(const TProgram& program);

  HWND Window() const { return fWindow; }
  HWND Tree() const { return ::FindWindowExW(fWindow, nullptr, L"TTreeList", nullptr); }
  HWND List() const { return ::FindWindowExW(Tree(), nullptr, L"SysListView32", nullptr); }
  HWND Button(const wchar_t* text) const { return ::FindWindowExW(fWindow, nullptr, L"Button", text); }
  /// The text beside the tree's small buttons.
  std::wstring Info() const {
    const HWND listName = ::FindWindowExW(Tree(), nullptr, L"Static", nullptr);
    return TextOf(::FindWindowExW(Tree(), listName, L"Static", nullptr));
  }

  /// A line of UTF-8 for each row in view: its level, then its cells.
  std::vector<std::string> Rows() const;

  void Click(const wchar_t* button) const { ::SendMessageW(Button(button), BM_CLICK, 0, 0); }
  /// As typed while the list has the focus.
  void Press(WPARAM key) const { ::PostMessageW(List(), WM_KEYDOWN, key, 0); }

 private:
  HWND fWindow;
};

/// A folder for each test, with a per-user folder for the program; removed at the end.
class EndToEnd : public testing::Test {
 protected:
  EndToEnd();
  ~EndToEnd() override;

  std::wstring Path(const std::wstring& name) const { return fFolder + L"\\" + name; }
  void WriteFile(const std::wstring& name, const std::string& bytes) const;
  std::string ReadFile(const std::wstring& name) const;
  bool Exists(const std::wstring& name) const;

  /// Environment of a run in this folder: settings below AppData, the simulator's trace in trace.txt.
  TProgram::TEnvironment Environment(TProgram::TEnvironment more = {}) const;
  /// The lines of the simulator's trace.
  std::vector<std::string> Trace() const;
  std::string TraceText() const { return ReadFile(L"trace.txt"); }
  std::string Utf8Path(const std::wstring& name) const { return Utf8FromText(FromWide(Path(name).c_str())); }

 private:
  std::wstring fFolder;
};
