// Measures what a start of the program costs, against a bare program that only opens the same document.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/windows/SystemHandles.h"

namespace {

constexpr int kFewestRuns = 11;
constexpr int kDefaultRuns = 21;
constexpr double kResultMilliseconds = 1500;  // how long the program leaves its result on the screen
constexpr DWORD kPatience = 30'000;

double Now() {
  LARGE_INTEGER frequency;
  LARGE_INTEGER counter;
  ::QueryPerformanceFrequency(&frequency);
  ::QueryPerformanceCounter(&counter);
  return 1000.0 * static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
}

class TProcess {
 public:
  explicit TProcess(std::wstring commandLine) : fStart(Now()) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                          &process)) {
      throw std::runtime_error("a program does not start");
    }
    fProcess.Reset(process.hProcess);
    const TFileHandle thread(process.hThread);
    fId = process.dwProcessId;
  }

  DWORD Id() const { return fId; }
  double Elapsed() const { return Now() - fStart; }
  bool HasEnded() const { return ::WaitForSingleObject(fProcess.Get(), 0) == WAIT_OBJECT_0; }

  /// Milliseconds from the call that started it to its end.
  double WaitForEnd() const {
    if (::WaitForSingleObject(fProcess.Get(), kPatience) != WAIT_OBJECT_0) {
      ::TerminateProcess(fProcess.Get(), 1);
      throw std::runtime_error("a program does not end");
    }
    const double elapsed = Elapsed();
    DWORD code = 1;
    if (!::GetExitCodeProcess(fProcess.Get(), &code) || code != 0) {
      throw std::runtime_error("a program ended with " + std::to_string(code));
    }
    return elapsed;
  }

 private:
  double fStart;
  TFileHandle fProcess;
  DWORD fId = 0;
};

/// What is started, and the document that each run finds as it was before.
struct TSubject {
  std::wstring Program;
  std::wstring Bare;
  std::wstring Original;
  std::wstring Document;
  std::wstring List;

  std::wstring ProgramLine() const {
    return L"\"" + Program + L"\" /P \"" + Document + L"\" \"" + List + L"\"";
  }
  std::wstring BareLine() const { return L"\"" + Bare + L"\" |" + Document; }

  void Restore() const {
    if (!::CopyFileW(Original.c_str(), Document.c_str(), FALSE)) {
      throw std::runtime_error("the document cannot be restored");
    }
  }
  void CheckWritten() const {
    if (Bytes(Document) == Bytes(Original))
      throw std::runtime_error("the program has not written the document");
  }

 private:
  static std::string Bytes(const std::wstring& name) {
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
};

HWND StatusLabelOf(DWORD process) {
  const HWND form = ::FindWindowW(L"TfrmMain", nullptr);
  DWORD owner = 0;
  ::GetWindowThreadProcessId(form, &owner);
  if (form == nullptr || owner != process) return nullptr;
  return ::FindWindowExW(::FindWindowExW(form, nullptr, L"TPanel", nullptr), nullptr, L"TLabel", nullptr);
}

/// Asks no message of the window: it does not answer while the task runs.
bool ShowsResult(HWND label) {
  std::array<wchar_t, 256> text{};
  ::InternalGetWindowText(label, text.data(), static_cast<int>(text.size()));
  return std::wcsstr(text.data(), L"angelegt") != nullptr;
}

double MeasureBare(const TSubject& subject) {
  subject.Restore();
  return TProcess(subject.BareLine()).WaitForEnd();
}

double MeasureEnd(const TSubject& subject) {
  subject.Restore();
  const double elapsed = TProcess(subject.ProgramLine()).WaitForEnd();
  subject.CheckWritten();
  return elapsed - kResultMilliseconds;
}

/// Until the label shows the result. A run of its own, as looking at the label costs the program time.
double MeasureResult(const TSubject& subject) {
  subject.Restore();
  const TProcess process(subject.ProgramLine());
  HWND label = nullptr;
  while (label == nullptr || !ShowsResult(label)) {
    if (process.HasEnded()) throw std::runtime_error("the program shows no result");
    ::Sleep(1);
    if (label == nullptr) label = StatusLabelOf(process.Id());
  }
  const double elapsed = process.Elapsed();
  process.WaitForEnd();
  return elapsed;
}

/// Between the two values that lie nearest, as far as `share` stands between them.
double Quantile(const std::vector<double>& sorted, double share) {
  const double place = share * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  return sorted[below] + (sorted[above] - sorted[below]) * (place - static_cast<double>(below));
}

/// Prints one line of the table and returns the median.
double Report(const char* name, std::vector<double> times) {
  std::sort(times.begin(), times.end());
  const double median = Quantile(times, 0.5);
  std::printf("%-34s %8.1f %8.1f %8.1f %8.1f %8.1f\n", name, median, Quantile(times, 0.25),
              Quantile(times, 0.75), times.front(), times.back());
  return median;
}

void Measure(const TSubject& subject, int runs) {
  // A desktop that stands already, as in front of every user: else the first window of a run would build it.
  ::GetDesktopWindow();
  MeasureBare(subject);  // unmeasured ones first: they load the files into memory
  MeasureEnd(subject);

  std::vector<double> bare;
  std::vector<double> end;
  std::vector<double> result;
  for (int i = 0; i < runs; ++i) {
    bare.push_back(MeasureBare(subject));
    end.push_back(MeasureEnd(subject));
    result.push_back(MeasureResult(subject));
  }

  std::printf("%-34s %8s %8s %8s %8s %8s\n", "milliseconds", "median", "1st qu.", "3rd qu.", "least", "most");
  const double bareMedian = Report("bare program", std::move(bare));
  const double endMedian = Report("program, to its end, less 1500", std::move(end));
  const double resultMedian = Report("program, to the result text", std::move(result));
  std::printf("ratio of medians, to the end: %.2f, to the result text: %.2f (%d runs each)\n",
              endMedian / bareMedian, resultMedian / bareMedian, runs);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count < 6 || count > 7) {
    std::fputs("Usage: start_timer PROGRAM BARE ORIGINAL DOCUMENT LIST [RUNS]\n", stderr);
    return 2;
  }
  const int runs = count == 7 ? static_cast<int>(std::wcstol(arguments[6], nullptr, 10)) : kDefaultRuns;
  try {
    Measure({arguments[1], arguments[2], arguments[3], arguments[4], arguments[5]},
            std::max(runs, kFewestRuns));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "start_timer: %s\n", error.what());
    return 1;
  }
  return 0;
}
