#pragma once

#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "headless/Machine.h"

// What the measurements of the native build share.

inline std::size_t HeapInUse() {
  const auto heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

/// Ends the run: a measurement of something that went wrong says nothing.
inline void Check(bool right) {
  if (!right) std::abort();
}

/// A machine of its own, with a disk.
class TFreshMachine {
 public:
  TFreshMachine() {
    std::string root = (std::filesystem::temp_directory_path() / "velmora-XXXXXX").string();
    headless::Machine() = headless::TMachine();
    headless::Machine().Root = mkdtemp(root.data());
    headless::Machine().Environment = {{u"TEMP", u"C:\\Temp"}, {u"APPDATA", u"C:\\AppData"}};
    std::filesystem::create_directories(headless::HostPath(u"C:\\Temp"));
  }
  ~TFreshMachine() { std::filesystem::remove_all(headless::Machine().Root); }
  TFreshMachine(const TFreshMachine&) = delete;
  TFreshMachine& operator=(const TFreshMachine&) = delete;
};
