#pragma once

#include <string>
#include <vector>

#include "platform/windows/SystemHandles.h"

// What the timers of the Windows build share. All times are milliseconds; failures throw std::runtime_error.

double Now();

/// A program from the call that creates it to its end. One that has not ended by then is ended with the
/// object.
class TTimedProcess {
 public:
  explicit TTimedProcess(std::wstring commandLine);
  ~TTimedProcess();
  TTimedProcess(const TTimedProcess&) = delete;
  TTimedProcess& operator=(const TTimedProcess&) = delete;

  DWORD Id() const { return fId; }
  HANDLE Handle() const { return fProcess.Get(); }
  double Elapsed() const { return Now() - fStart; }
  bool HasEnded() const { return ::WaitForSingleObject(fProcess.Get(), 0) == WAIT_OBJECT_0; }

  /// Its top-level window of this class; null when it has none.
  HWND Window(const wchar_t* className) const;
  /// How long it has lived. Throws when it does not end, or not with 0.
  double WaitForEnd() const;

 private:
  double fStart;
  TFileHandle fProcess;
  DWORD fId = 0;
};

/// The values measured of one thing.
class TSeries {
 public:
  void Add(double value) { fValues.push_back(value); }
  double Median() const { return Quantile(0.5); }
  /// " median | 1st quartile | 3rd quartile |", a part of a table's row.
  void PrintCells() const;

 private:
  double Quantile(double share) const;
  std::vector<double> fValues;
};
