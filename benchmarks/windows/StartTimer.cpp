// Measures what a task costs from the program's start to its end, against two bare programs that make the
// same calls of the component: one without any window, one that shows a single window with a text.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/windows/Timing.h"

namespace {

constexpr double kResultMilliseconds = 1500;  // how long the program leaves its result on the screen

/// A switch, and the files in the benchmark's folder that it is started with.
struct TTask {
  const wchar_t* Switch;
  const wchar_t* Original;
  const wchar_t* List;
  const wchar_t* Result;  ///< a part of the text that tells of the end; null: there is none
};
constexpr TTask kTasks[] = {
    {L"/P", L"original.ipt", L"list.txt", L"angelegt"},
    {L"/R", L"original.idw", nullptr, L"IDW Referenz geändert."},
    {L"/RI", L"marked.ipt", nullptr, nullptr},
};

/// One of the bare programs and what was measured of it.
struct TBare {
  std::string Name;
  std::wstring Line;
  TSeries Times{};
};

/// One task, with what was measured of it. Each run finds the document as it was before.
class TSubject {
 public:
  TSubject(const std::wstring& program, const std::vector<std::wstring>& bare, const std::wstring& folder,
           const TTask& task)
      : fTask(task),
        fOriginal(folder + L"\\" + task.Original),
        fDocument(folder + L"\\run-" + task.Original) {
    fProgramLine = L"\"" + program + L"\" " + task.Switch + L" \"" + fDocument + L"\"";
    const std::wstring list = task.List != nullptr ? folder + L"\\" + task.List : L"";
    if (!list.empty()) fProgramLine += L" \"" + list + L"\"";
    for (std::size_t i = 0; i < bare.size(); ++i) {
      fBare.push_back(
          {i == 0 ? "bare program" : "bare window",
           L"\"" + bare[i] + L"\" |" + task.Switch + L"|" + fDocument + (list.empty() ? L"" : L"|" + list)});
    }
  }

  /// One run of each kind.
  void Measure() {
    for (TBare& bare : fBare) bare.Times.Add(MeasureBare(bare));
    fEndTimes.Add(MeasureEnd());
    if (fTask.Result != nullptr) fResultTimes.Add(MeasureResult());
  }
  void WarmUp() const {
    for (const TBare& bare : fBare) MeasureBare(bare);
    MeasureEnd();
  }
  void Print() const {
    PrintRow("to its end", fEndTimes);
    if (fTask.Result != nullptr) PrintRow("to the result text", fResultTimes);
  }

 private:
  void Restore() const;
  void CheckWritten() const;
  double MeasureBare(const TBare& bare) const;
  double MeasureEnd() const;
  double MeasureResult() const;
  bool ShowsResult(const TTimedProcess& process) const;
  void PrintRow(const char* until, const TSeries& times) const;

  const TTask& fTask;
  std::wstring fOriginal;
  std::wstring fDocument;
  std::wstring fProgramLine;
  std::vector<TBare> fBare;
  TSeries fEndTimes;
  TSeries fResultTimes;
};

std::string Bytes(const std::wstring& name) {
  const TFileHandle file(::CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
  std::string bytes(65'536, '\0');
  DWORD count = 0;
  if (!::ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr)) {
    throw std::runtime_error("a document cannot be read");
  }
  bytes.resize(count);
  return bytes;
}

void TSubject::Restore() const {
  if (!::CopyFileW(fOriginal.c_str(), fDocument.c_str(), FALSE)) {
    throw std::runtime_error("the document cannot be restored");
  }
}

void TSubject::CheckWritten() const {
  if (Bytes(fDocument) == Bytes(fOriginal))
    throw std::runtime_error("a program has not written the document");
}

double TSubject::MeasureBare(const TBare& bare) const {
  Restore();
  const double elapsed = TTimedProcess(bare.Line).WaitForEnd();
  CheckWritten();
  return elapsed;
}

double TSubject::MeasureEnd() const {
  Restore();
  const double elapsed = TTimedProcess(fProgramLine).WaitForEnd();
  CheckWritten();
  return elapsed - kResultMilliseconds;
}

/// Until the label shows the result. A run of its own, as looking at the label costs the program time.
double TSubject::MeasureResult() const {
  Restore();
  const TTimedProcess process(fProgramLine);
  while (!ShowsResult(process)) {
    if (process.HasEnded()) throw std::runtime_error("the program shows no result");
    ::Sleep(1);
  }
  const double elapsed = process.Elapsed();
  process.WaitForEnd();
  return elapsed;
}

/// Asks no message of the window: it does not answer while the task runs.
bool TSubject::ShowsResult(const TTimedProcess& process) const {
  const HWND form = process.Window(L"TfrmMain");
  if (form == nullptr) return false;
  const HWND panel = ::FindWindowExW(form, nullptr, L"TPanel", nullptr);
  std::array<wchar_t, 256> text{};
  ::InternalGetWindowText(::FindWindowExW(panel, nullptr, L"TLabel", nullptr), text.data(),
                          static_cast<int>(text.size()));
  return std::wcsstr(text.data(), fTask.Result) != nullptr;
}

void TSubject::PrintRow(const char* until, const TSeries& times) const {
  for (const TBare& bare : fBare) {
    std::printf("| `%ls` %s, %s |", fTask.Switch, until, bare.Name.c_str());
    times.PrintCells();
    bare.Times.PrintCells();
    std::printf(" %.2f |\n", times.Median() / bare.Times.Median());
  }
}

void Measure(const std::wstring& program, const std::vector<std::wstring>& bare, const std::wstring& folder,
             int runs) {
  // A desktop that stands already, as in front of every user: else the first window of a run would build it.
  ::GetDesktopWindow();
  std::vector<TSubject> subjects;
  for (const TTask& task : kTasks) subjects.emplace_back(program, bare, folder, task);
  for (const TSubject& subject : subjects) subject.WarmUp();  // loads the files into memory
  for (int i = 0; i < runs; ++i) {
    for (TSubject& subject : subjects) subject.Measure();
  }
  std::puts(
      "| task, against | ms | 1st quartile | 3rd quartile | bare, ms | 1st quartile | 3rd quartile | ratio "
      "|");
  std::puts("|---|--:|--:|--:|--:|--:|--:|--:|");
  for (const TSubject& subject : subjects) subject.Print();
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 6) {
    std::fputs("Usage: start_timer PROGRAM BARE BARE_WINDOW FOLDER RUNS\n", stderr);
    return 2;
  }
  try {
    Measure(arguments[1], {arguments[2], arguments[3]}, arguments[4],
            std::max(1, static_cast<int>(std::wcstol(arguments[5], nullptr, 10))));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "start_timer: %s\n", error.what());
    return 1;
  }
  return 0;
}
