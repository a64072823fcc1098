// Measures the export dialog of the real program from outside: how long it takes to its rows, and how it
// answers.

#include <windows.h>

#include <commctrl.h>
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/windows/Timing.h"

namespace {

constexpr DWORD kLookEvery = 5;
constexpr double kPatience = 120'000;
constexpr int kPages = 10;  // in a row, each with rows that were not drawn before

/// The open dialog of a run.
class TDialog {
 public:
  /// Waits for its rows.
  explicit TDialog(const TTimedProcess& process) {
    while (Rows() == 0) {
      if (process.HasEnded() || process.Elapsed() > kPatience) throw std::runtime_error("no rows are shown");
      ::Sleep(kLookEvery);
      if (fForm == nullptr) fForm = process.Window(L"TfrmExportAsm");
      const HWND tree = ::FindWindowExW(fForm, nullptr, L"TTreeList", nullptr);
      if (tree != nullptr) fList = ::FindWindowExW(tree, nullptr, L"SysListView32", nullptr);
    }
    Draw();
  }

  LRESULT Rows() const { return fList == nullptr ? 0 : ::SendMessageW(fList, LVM_GETITEMCOUNT, 0, 0); }
  LRESULT CurrentRow() const {
    return ::SendMessageW(fList, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED);
  }
  void Press(WPARAM key) const { ::SendMessageW(fList, WM_KEYDOWN, key, 0); }
  /// What the button tells the form, without the button's own drawing and the change of the focus.
  void Click(const wchar_t* button) const {
    const HWND window = ::FindWindowExW(fForm, nullptr, L"Button", button);
    if (window == nullptr) throw std::runtime_error("a button is missing");
    const WPARAM command = MAKEWPARAM(::GetDlgCtrlID(window), BN_CLICKED);
    ::SendMessageW(fForm, WM_COMMAND, command, reinterpret_cast<LPARAM>(window));
  }
  /// Returns when everything has been drawn.
  void Draw() const { ::RedrawWindow(fForm, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN); }
  void DrawAgain() const {
    ::RedrawWindow(fList, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  }
  void Close() const { ::PostMessageW(fForm, WM_CLOSE, 0, 0); }

 private:
  HWND fForm = nullptr;
  HWND fList = nullptr;
};

template <class TAction>
double TimeOf(TAction action) {
  const double start = Now();
  action();
  return Now() - start;
}

/// What was measured of one assembly.
class TSubject {
 public:
  TSubject(const std::wstring& program, const std::wstring& bare, const std::wstring& assembly)
      : fProgramLine(L"\"" + program + L"\" /E \"" + assembly + L"\""),
        fBareLine(L"\"" + bare + L"\" |/E|" + assembly),
        fCallsLine(L"\"" + bare + L"\" |/E-calls|" + assembly) {}

  void Measure() {
    fCallsTimes.Add(TTimedProcess(fCallsLine).WaitForEnd());
    fBareTimes.Add(TTimedProcess(fBareLine).WaitForEnd());
    const TTimedProcess process(fProgramLine);
    const TDialog dialog(process);
    fShownTimes.Add(process.Elapsed());
    MeasureButtons(dialog);
    MeasureKeys(dialog);
    PROCESS_MEMORY_COUNTERS memory{};
    if (!::GetProcessMemoryInfo(process.Handle(), &memory, sizeof memory)) {
      throw std::runtime_error("the memory cannot be asked");
    }
    fPeaks.Add(static_cast<double>(memory.PeakWorkingSetSize) / 1e6);
    dialog.Close();
    process.WaitForEnd();
  }

  void Print() const {
    const auto row = [this](const char* name, const TSeries& series) {
      std::printf("| %s, %lld rows |", name, static_cast<long long>(fRows));
      series.PrintCells();
      std::puts("");
    };
    row("bare program, component's calls alone, ms", fCallsTimes);
    row("bare program, also looking for drawings, ms", fBareTimes);
    row("start to the visible rows, ms", fShownTimes);
    row("expand all, ms", fExpandTimes);
    row("expand all and draw, ms", fExpandedTimes);
    row("collapse all, ms", fCollapseTimes);
    row("collapse all and draw, ms", fCollapsedTimes);
    row("page down at the front, ms", fFrontTimes);
    row("page down at the end, ms", fBackTimes);
    row("the same page drawn again, ms", fDrawTimes);
    row("peak memory, MB", fPeaks);
  }

 private:
  void MeasureButtons(const TDialog& dialog) {
    const LRESULT closed = dialog.Rows();
    const double start = Now();
    fExpandTimes.Add(TimeOf([&] { dialog.Click(L"Alle Knoten öffnen"); }));
    dialog.Draw();
    fExpandedTimes.Add(Now() - start);
    fRows = dialog.Rows();
    if (fRows <= closed) throw std::runtime_error("nothing was opened");

    const double end = Now();
    fCollapseTimes.Add(TimeOf([&] { dialog.Click(L"Alle Knoten schließen"); }));
    dialog.Draw();
    fCollapsedTimes.Add(Now() - end);
    if (dialog.Rows() >= closed) throw std::runtime_error("nothing was closed");
    dialog.Click(L"Alle Knoten öffnen");
    dialog.Draw();
  }

  void MeasureKeys(const TDialog& dialog) {
    MeasurePages(dialog, VK_NEXT, fFrontTimes);
    dialog.Press(VK_END);
    for (int i = 0; i <= kPages; ++i) dialog.Press(VK_PRIOR);
    dialog.Draw();
    MeasurePages(dialog, VK_NEXT, fBackTimes);
    fDrawTimes.Add(TimeOf([&] { dialog.DrawAgain(); }));
  }

  static void MeasurePages(const TDialog& dialog, WPARAM key, TSeries& times) {
    for (int i = 0; i < kPages; ++i) {
      const LRESULT before = dialog.CurrentRow();
      times.Add(TimeOf([&] {
        dialog.Press(key);
        dialog.Draw();
      }));
      if (dialog.CurrentRow() <= before) throw std::runtime_error("a key moved nothing");
    }
  }

  std::wstring fProgramLine;
  std::wstring fBareLine;
  std::wstring fCallsLine;
  LRESULT fRows = 0;
  TSeries fCallsTimes;
  TSeries fBareTimes;
  TSeries fShownTimes;
  TSeries fExpandTimes;
  TSeries fExpandedTimes;
  TSeries fCollapseTimes;
  TSeries fCollapsedTimes;
  TSeries fFrontTimes;
  TSeries fBackTimes;
  TSeries fDrawTimes;
  TSeries fPeaks;
};

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count < 5) {
    std::fputs("Usage: dialog_timer PROGRAM BARE RUNS ASSEMBLY...\n", stderr);
    return 2;
  }
  try {
    ::GetDesktopWindow();  // one that stands already, as in front of every user
    std::vector<TSubject> subjects;
    for (int i = 4; i < count; ++i) subjects.emplace_back(arguments[1], arguments[2], arguments[i]);
    const int runs = std::max(1, static_cast<int>(std::wcstol(arguments[3], nullptr, 10)));
    for (int run = 0; run < runs; ++run) {
      for (TSubject& subject : subjects) subject.Measure();
    }
    std::puts("| measured | median | 1st quartile | 3rd quartile |\n|---|--:|--:|--:|");
    for (const TSubject& subject : subjects) subject.Print();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "dialog_timer: %s\n", error.what());
    return 1;
  }
  return 0;
}
