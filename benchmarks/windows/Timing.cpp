#include "benchmarks/windows/Timing.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace {

constexpr DWORD kPatience = 120'000;

}  // namespace

double Now() {
  LARGE_INTEGER frequency;
  LARGE_INTEGER counter;
  ::QueryPerformanceFrequency(&frequency);
  ::QueryPerformanceCounter(&counter);
  return 1000.0 * static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
}

TTimedProcess::TTimedProcess(std::wstring commandLine) : fStart(Now()) {
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

TTimedProcess::~TTimedProcess() {
  if (!HasEnded()) ::TerminateProcess(fProcess.Get(), 1);
}

HWND TTimedProcess::Window(const wchar_t* className) const {
  HWND window = nullptr;
  while ((window = ::FindWindowExW(nullptr, window, className, nullptr)) != nullptr) {
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    if (owner == fId) break;
  }
  return window;
}

double TTimedProcess::WaitForEnd() const {
  if (::WaitForSingleObject(fProcess.Get(), kPatience) != WAIT_OBJECT_0) {
    throw std::runtime_error("a program does not end");
  }
  const double elapsed = Elapsed();
  DWORD code = 1;
  if (!::GetExitCodeProcess(fProcess.Get(), &code) || code != 0) {
    throw std::runtime_error("a program ended with " + std::to_string(code));
  }
  return elapsed;
}

/// Between the two values that lie nearest, as far as `share` stands between them.
double TSeries::Quantile(double share) const {
  std::vector<double> sorted = fValues;
  std::ranges::sort(sorted);
  const double place = share * static_cast<double>(sorted.size() - 1);
  const auto below = static_cast<std::size_t>(place);
  const std::size_t above = std::min(below + 1, sorted.size() - 1);
  return sorted[below] + (sorted[above] - sorted[below]) * (place - static_cast<double>(below));
}

void TSeries::PrintCells() const {
  std::printf(" %.1f | %.1f | %.1f |", Median(), Quantile(0.25), Quantile(0.75));
}
