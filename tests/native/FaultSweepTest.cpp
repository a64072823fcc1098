#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "headless/DialogScreen.h"
#include "tests/support/ProgramTest.h"

// Each of the four tasks, and in each of them every call of the component, of files, system and windows, and
// every piece of memory that the SQL engine asks for, fails once.

namespace {

using headless::Machine;

/// Lets one allocation of the SQL engine fail. Must be in place before the engine's first use.
struct TSqlMemory {
  static inline sqlite3_mem_methods Default{};
  static inline std::int64_t Count = 0;
  static inline std::int64_t FailAt = 0;
  static inline bool Failed = false;

  static bool Fails() {
    if (++Count != FailAt) return false;
    return Failed = true;
  }
  static bool Install() {
    sqlite3_config(SQLITE_CONFIG_GETMALLOC, &Default);
    sqlite3_mem_methods methods = Default;
    methods.xMalloc = [](int size) { return Fails() ? nullptr : Default.xMalloc(size); };
    methods.xRealloc = [](void* old, int size) { return Fails() ? nullptr : Default.xRealloc(old, size); };
    return sqlite3_config(SQLITE_CONFIG_MALLOC, &methods) == SQLITE_OK;
  }
};
const bool kSqlMemoryInstalled = TSqlMemory::Install();

class FaultSweepTest : public TProgramTest {
 protected:
  struct TTask {
    TextView Arguments;
    std::string WritingCall;  ///< from its return on the document may differ
    int LeastFaults;          ///< a sweep of the component with fewer has not gone through the task
    bool ClosesAfterFailedSave = false;
  };
  const std::string fDocument =
      DocumentWith(TextProperty("A", "1") + "," + TextProperty("INTZUSTAND-EOF", "a") + "," +
                       TextProperty("IndexHinweis", "alt"),
                   R"("references": ["u.iam", "t.ipt"],)");
  const std::vector<TTask> fTasks = {
      {u"/P C:\\P\\x.iam C:\\Liste.txt", "propertysets.WritePropertiesToFile()", 60},
      {u"/R C:\\P\\x.iam", "saveset.ExecuteSave()", 16, true},
      {u"/RI C:\\P\\x.iam", "propertysets.WritePropertiesToFile()", 20},
      {u"/E C:\\P\\x.iam", "none", 25},
  };

  static std::ptrdiff_t OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  }

  void RunTask(const TTask& task) {
    for (const TextView folder : {u"C:\\P", u"C:\\Temp\\x.iam", u"C:\\Users"}) {
      std::filesystem::remove_all(headless::HostPath(folder));
    }
    WriteFile(u"C:\\Liste.txt", "A\n2\nB\n3\nINTZUSTAND-EOF\nb\n");
    WriteFile(u"C:\\P\\x.iam", fDocument);
    WriteFile(u"C:\\P\\u.iam", R"({"references": ["t.ipt"]})");
    WriteFile(u"C:\\P\\t.ipt", "Teil");
    WriteFile(u"C:\\P\\x.zip", "altes Archiv");
    Machine().PressOkAfter.assign(20, 0);
    Machine().SaveAnswers = {u"C:\\P\\x.zip"};
    Machine().UserActions = {[] { headless::TDialogScreen::Press(u"Exportieren"); },
                             [] { headless::TDialogScreen::PressEscape(); }};
    const std::ptrdiff_t descriptors = OpenDescriptors();
    Run(task.Arguments);

    EXPECT_EQ(LiveObjects(), 0);
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_TRUE(Machine().ZOrder.empty()) << "no window is left";
    const bool written = std::ranges::count(Trace, task.WritingCall) != 0;
    EXPECT_EQ(ReadFile(u"C:\\P\\x.iam") != fDocument, written);
    EXPECT_EQ(Exists(u"C:\\P\\~Archiv1.tmp"), Machine().FailedCall == "RenameFile") << "a finished one stays";
    const std::string archive = ReadFile(u"C:\\P\\x.zip");
    const bool whole = archive.size() > 22 && archive.compare(archive.size() - 22, 4, "PK\5\6") == 0;
    EXPECT_TRUE(whole || archive == "altes Archiv" || !Exists(u"C:\\P\\x.zip")) << "half an archive";
    EXPECT_EQ(ReadFile(u"C:\\P\\t.ipt"), "Teil");
    if (task.ClosesAfterFailedSave) {
      // Once the save has begun, both are closed whatever fails; before it, neither.
      EXPECT_EQ(Has(Trace, "document.CloseDocument"), Has(Trace, "server.SaveSet"));
      EXPECT_EQ(Has(Trace, "server.CloseServer"), Has(Trace, "server.SaveSet"));
    }
  }

  static bool ArchiveIsComplete() {
    const std::vector<std::string> archive{ReadFile(u"C:\\P\\x.zip")};
    return Has(archive, "x.iam") && Has(archive, "u.iam") && Has(archive, "t.ipt") &&
           Has(archive, "Export.html");
  }

  /// Lets the calls fail one after the other, until one survives; returns how many have failed.
  template <class TSetFault, class TCheck>
  int Sweep(const TTask& task, TSetFault setFault, TCheck hasFailed) {
    int faults = 0;
    for (std::int64_t n = 1;; ++n) {
      SCOPED_TRACE(Utf8FromText(task.Arguments) + " " + std::to_string(n));
      setFault(n);
      RunTask(task);
      setFault(0);
      if (!hasFailed()) return faults;
      ++faults;
    }
  }
};

}  // namespace

TEST_F(FaultSweepTest, NothingIsLostWhateverFails) {
  const std::vector<std::string> silent = {"FolderExists",  "FileExists",   "CreateFolders", "Open",
                                           "IsLink",        "CopyFileOver", "RemoveFolder",  "ComputerName",
                                           "DesktopFolder", "IdentityOf",   "ListNames",     "RootAnswers"};
  for (const TTask& task : fTasks) {
    const int component = Sweep(
        task,
        [this](std::int64_t n) {
          Simulation.FailCall = n;
          Simulation.FailText = u"Gesperrt";
        },
        [] { return Has(Machine().Log, "error box \"Velmora\": Gesperrt"); });
    const int seam = Sweep(
        task, [](std::int64_t n) { Machine().FailCall = n; },
        [&] {
          const std::string& failed = Machine().FailedCall;
          if (failed.empty() || std::ranges::count(silent, failed) != 0) return !failed.empty();
          EXPECT_TRUE(Has(Machine().Log, "Dateizugriff verweigert")) << failed;
          return true;
        });
    const int sql = Sweep(
        task,
        [](std::int64_t n) {
          TSqlMemory::Count = 0;
          TSqlMemory::FailAt = n;
          if (n != 0) TSqlMemory::Failed = false;
        },
        [] {
          // The engine gets over some of them; no row may be lost without a word.
          EXPECT_TRUE(!TSqlMemory::Failed || Has(Machine().Log, "error box") || ArchiveIsComplete());
          return TSqlMemory::Failed;
        });
    std::printf(
        "%-30s survived %d faults of the component, %d of files, system and windows, %d of the SQL engine\n",
        Utf8FromText(task.Arguments).c_str(), component, seam, sql);
    EXPECT_GT(component, task.LeastFaults);
    EXPECT_GT(seam, 3);
    EXPECT_TRUE(task.Arguments[1] != u'E' || sql > 100);
  }
}
