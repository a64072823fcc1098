#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "headless/Machine.h"

/// A fresh machine with its own empty disk, TEMP and APPDATA set; the disk is removed at the end.
class TMachineTest : public testing::Test {
 protected:
  TMachineTest();
  ~TMachineTest() override;

  /// Writes a file under its Windows name, with its folders.
  static void WriteFile(TextView path, std::string_view bytes);
  static std::string ReadFile(TextView path);
  static bool Exists(TextView path) { return std::filesystem::exists(headless::HostPath(path)); }
};

/// Resets Machine(); its disk is the folder `root`.
void ResetMachine(const std::filesystem::path& root);
