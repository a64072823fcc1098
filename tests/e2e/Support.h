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

/// Waits until `condition` holds, at most `milliseconds`; returns whether it does.
bool WaitUntil(const std::function<bool()>& condition, DWORD milliseconds = 20'000);

std::wstring TextOf(HWND window);
std::wstring ClassOf(HWND window);

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

  /// Starts it with `arguments` as they stand and with changes to the environment. Nothing in
  /// `standardInput`: the process has none.
  TProgram(const std::wstring& arguments, const TEnvironment& changes,
           const std::optional<std::string>& standardInput = {});
  ~TProgram();
  TProgram(const TProgram&) = delete;
  TProgram& operator=(const TProgram&) = delete;

  /// The status window once it is visible; null when it does not come.
  HWND StatusWindow() const;
  /// The text of its label.
  std::wstring StatusText() const;
  bool WaitForStatus(const std::wstring& text) const;
  /// A message box of the program once it is open; null when it does not come.
  HWND MessageBox() const;

  bool HasEnded() const { return ::WaitForSingleObject(fProcess.Get(), 0) == WAIT_OBJECT_0; }
  /// Nothing when it does not end by itself.
  std::optional<DWORD> WaitForExit() const;

 private:
  HWND FindOwnWindow(const wchar_t* className) const;

  TFileHandle fProcess;
  DWORD fId = 0;
};

/// A folder of its own for each test, with a per-user folder for the program; removed at the end.
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
