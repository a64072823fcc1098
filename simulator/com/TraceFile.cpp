#include "simulator/com/TraceFile.h"

#include <string>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

TTraceFile::TTraceFile(const UnicodeString& path)
    : fFile(::CreateFileW(Wide(path), FILE_APPEND_DATA,
                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                          FILE_ATTRIBUTE_NORMAL, nullptr)) {
  if (!fFile) throw LastSystemError();
}

void TTraceFile::Append(std::string_view line) {
  const std::string bytes = std::string(line) + "\n";
  DWORD count = 0;
  ::WriteFile(fFile.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
}
