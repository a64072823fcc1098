#pragma once

#include <string_view>

#include "platform/Text.h"
#include "platform/windows/SystemHandles.h"

/// The file that the trace is appended to; several processes may share it. Each line is one write that the
/// system has when Append returns, so that nothing is lost when the process is killed.
class TTraceFile {
 public:
  /// Throws EError when the file can neither be opened nor created.
  explicit TTraceFile(const UnicodeString& path);

  void Append(std::string_view line);

 private:
  TFileHandle fFile;
};
