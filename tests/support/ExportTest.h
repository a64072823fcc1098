#pragma once

#include <functional>
#include <string>
#include <vector>

#include "headless/DialogScreen.h"
#include "headless/TreeListScreen.h"
#include "tests/support/ProgramTest.h"

/// The export of a small assembly, C:\P\g.iam, by a user who acts on the dialog.
class TExportTest : public TProgramTest {
 protected:
  TExportTest() {
    WriteFile(u"C:\\P\\g.iam",
              R"({"displayName": "Getriebe", "references": ["u.iam", "fehlt.ipt", "C:/P/q/a.ipt"]})");
    WriteFile(u"C:\\P\\g.idw", "{}");
    WriteFile(u"C:\\P\\u.iam", R"({"references": ["a.ipt"]})");
    WriteFile(u"C:\\P\\a.ipt", "erste");
    WriteFile(u"C:\\P\\q\\a.ipt", "zweite");
  }

  /// Runs /E on `assembly` while the user does these things with the dialog.
  std::vector<std::string> RunExport(TextView assembly, const std::vector<std::function<void()>>& actions) {
    headless::Machine().UserActions.assign(actions.begin(), actions.end());
    return Run(UnicodeString(u"/E ").append(assembly));
  }
};
