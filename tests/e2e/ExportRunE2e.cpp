#include <shlobj.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/e2e/Support.h"

namespace {

const std::wstring kAssembly = L"Prüf & 'Stand' 100% \U0001F529.iam";
const std::wstring kStaging = L"Temp\\" + kAssembly;

/// Keeps everybody else out of a file while it lives; creates it when it is missing.
TFileHandle Locked(const std::wstring& path) {
  return TFileHandle(::CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_ALWAYS, 0, nullptr));
}

/// The path by another drive letter: Wine shows its drives below Z: as well.
std::wstring ByOtherDrive(const std::wstring& path) {
  using TUnixName = char*(__cdecl*)(const wchar_t*);
  const auto unixName = reinterpret_cast<TUnixName>(reinterpret_cast<void*>(
      ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  char* const name = unixName != nullptr ? unixName(path.c_str()) : nullptr;
  if (name == nullptr) return path;
  const std::wstring other = Wide(TextFromUtf8("Z:" + std::string(name)));
  ::HeapFree(::GetProcessHeap(), 0, name);
  return other;
}

/// A run of the program whose user exports.
class TExport {
 public:
  TExport(const std::wstring& assembly, const TProgram::TEnvironment& environment)
      : Program(L"/E \"" + assembly + L"\"", environment), Dialog(Program) {}

  /// The click waits until the scan has ended.
  HWND OpenSaveDialog() const {
    // The second one comes while the first one's dialog is open.
    for (int i = 0; i < 2; ++i) ::PostMessageW(Dialog.Button(L"Exportieren"), BM_CLICK, 0, 0);
    return Program.VisibleWindow(L"#32770", L"Baugruppe exportieren nach");
  }
  static HWND NameField(HWND saveDialog) { return ::GetDlgItem(saveDialog, 1152); }
  static void Press(HWND saveDialog, WORD button) { ::PostMessageW(saveDialog, WM_COMMAND, button, 0); }

  void ExportAs(const std::wstring& name) const {
    const HWND saveDialog = OpenSaveDialog();
    ::SendMessageW(NameField(saveDialog), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
    Press(saveDialog, IDOK);
  }

  const TProgram Program;
  const TExportDialog Dialog;
};

class ExportRunE2e : public EndToEnd {
 protected:
  ExportRunE2e() {
    std::filesystem::create_directories(Path(L"Temp"));
    std::filesystem::create_directories(Path(L"Ziel"));
  }

  /// Runs the export of an assembly in `folder` that references these files.
  TExport StartExport(const std::filesystem::path& folder,
                      const std::vector<std::wstring>& references) const {
    std::ofstream file(folder / kAssembly, std::ios::binary);
    file << R"({"references": [")";
    for (const std::wstring& name : references) {
      file << (&name == &references[0] ? "" : R"(", ")") << Utf8FromText(FromWide(name.c_str()));
    }
    file << R"("]})";
    file.close();
    return {(folder / kAssembly).wstring(), Environment({{L"TMP", Path(L"Temp")}})};
  }
  /// Removes the archive.
  void ExpectExported(const TExport& run, const std::wstring& archive) const {
    EXPECT_EQ(run.Program.WaitForExit(), 0U);
    EXPECT_TRUE(std::filesystem::remove(archive));
    EXPECT_FALSE(Exists(kStaging) || Exists(kStaging + L"~Export.tmp"));
    EXPECT_EQ(Trace().back(), "alive 0");
  }
};

}  // namespace

TEST_F(ExportRunE2e, PacksEveryExistingFile) {
  // What stays here is compared with the archive by other readers after this test.
  const std::filesystem::path kept(BuiltPath(L"exported"));
  std::filesystem::remove_all(kept);
  std::filesystem::create_directories(kept / L"Inhalt");
  std::ofstream(kept / L"Archiv.zip") << "altes Archiv";
  std::vector<std::wstring> references = {L"fehlt.ipt"};
  for (const wchar_t* name : {L"a.ipt", L"gesperrt.ipt"}) {
    WriteFile(name, "an anderer Stelle");
    references.push_back(std::filesystem::path(Path(name)).generic_wstring());
  }
  const std::wstring longName = std::wstring(246, L'x') + L".ipt";
  for (const std::wstring& name :
       {std::wstring(L"Öl & 'Fett' 100%.ipt"), std::wstring(L"\U0001F529  Schraube.ipt"), longName,
        std::wstring(L"a.ipt")}) {
    std::ofstream(kept / L"Inhalt" / name) << "Inhalt von " << name.size();
    references.push_back(name);
  }
  // Both files of this name are write-protected, and the later one is packed.
  const std::wstring sameNames[] = {Path(L"a.ipt"), (kept / L"Inhalt" / L"a.ipt").wstring()};
  for (const std::wstring& file : sameNames) ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
  const TFileHandle locked = Locked(Path(L"gesperrt.ipt"));

  const TExport run = StartExport(kept / L"Inhalt", references);
  const HWND saveDialog = run.OpenSaveDialog();
  EXPECT_EQ(::GetWindow(saveDialog, GW_OWNER), run.Dialog.Window());
  std::array<wchar_t, MAX_PATH> proposed{};
  ::SendMessageW(TExport::NameField(saveDialog), WM_GETTEXT, proposed.size(),
                 reinterpret_cast<LPARAM>(proposed.data()));
  EXPECT_EQ(std::filesystem::path(kAssembly).replace_extension(L".zip"), proposed.data());
  TExport::Press(saveDialog, IDCANCEL);
  EXPECT_TRUE(WaitUntil([&] { return !::IsWindow(saveDialog) && ::IsWindowEnabled(run.Dialog.Window()); }))
      << "one save dialog for two clicks";
  EXPECT_FALSE(Exists(kStaging));
  run.ExportAs((kept / L"Archiv").wstring());
  EXPECT_EQ(run.Program.WaitForExit(), 0U) << "the old archive is replaced without a question";
  EXPECT_FALSE(Exists(kStaging));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(kept), {}), 2);
  EXPECT_EQ(Trace().back(), "alive 0");
  // So that they can be removed.
  for (const std::wstring& file : sameNames) ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(ExportRunE2e, UserCanRetryAfterFailure) {
  WriteFile(L"a.ipt", "a");
  WriteFile(L"Ziel\\Archiv.zip", "altes Archiv");
  WriteFile(kStaging + L"\\b.ipt", "b");
  const TExport run = StartExport(Path(L""), {L"a.ipt", ByOtherDrive(Path(kStaging) + L"\\b.ipt")});
  run.ExportAs(Path(L"Ziel\\Archiv.zip"));
  EXPECT_TRUE(run.Program.TextOfClosedBox().ends_with(L"/b.ipt\" liegt darin."));
  EXPECT_EQ(ReadFile(kStaging + L"\\b.ipt"), "b") << "known by its folder, not by its path";
  std::filesystem::remove_all(Path(kStaging));
  {
    const TFileHandle locked = Locked(Path(L"Ziel\\Archiv.zip"));
    ASSERT_TRUE(locked);
    run.ExportAs(Path(L"Ziel\\Archiv.zip"));
    EXPECT_NE(run.Program.TextOfClosedBox(), L"");
  }
  EXPECT_EQ(ReadFile(L"Ziel\\Archiv.zip"), "altes Archiv");
  EXPECT_FALSE(Exists(kStaging));
  run.Dialog.Click(L"Alle Knoten öffnen");
  EXPECT_EQ(run.Dialog.Rows().size(), 3U) << "the tree lives again";
  std::array<wchar_t, MAX_PATH> desktop{};
  ::SHGetFolderPathW(nullptr, CSIDL_DESKTOPDIRECTORY, nullptr, SHGFP_TYPE_CURRENT, desktop.data());
  run.ExportAs(L"velmora-test 1.2.zip");
  ExpectExported(run, desktop.data() + std::wstring(L"\\velmora-test 1.2.zip"));
}

TEST_F(ExportRunE2e, KilledExportLeavesNoPartialArchive) {
  WriteFile(L"groß.ipt", std::string(100 << 20, 'x'));
  {
    const TExport run = StartExport(Path(L""), {L"groß.ipt"});
    run.ExportAs(Path(L"Ziel\\Archiv.zip"));
    ASSERT_TRUE(WaitUntil([this] { return Exists(L"Ziel\\~Archiv1.tmp"); }));
    EXPECT_EQ(::SendMessageW(run.Dialog.Window(), WM_QUERYENDSESSION, 0, 0), FALSE) << "at work";
    // The end of the scope kills it.
  }
  EXPECT_TRUE(Exists(kStaging));
  EXPECT_FALSE(Exists(L"Ziel\\Archiv.zip"));
  const TExport run = StartExport(Path(L""), {L"groß.ipt"});
  EXPECT_TRUE(WaitUntil([&run] {
    return ::SendMessageW(run.Dialog.Window(), WM_QUERYENDSESSION, 0, 0) == TRUE;
  })) << "the scan is over";
  run.ExportAs(Path(L"Ziel\\Archiv.zip"));
  const auto opens = [file = Path(L"Ziel\\~Archiv2.tmp")](DWORD access) {
    return TFileHandle(::CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  };
  {
    // A virus scanner still has the archive open when it is complete and gets its name.
    TFileHandle scanner;
    ASSERT_TRUE(WaitUntil([&] { return static_cast<bool>(scanner = opens(GENERIC_READ)); }));
    ASSERT_TRUE(WaitUntil([&] { return static_cast<bool>(opens(GENERIC_WRITE)); }));
    // Meanwhile nobody else exports an assembly of this name.
    WriteFile(L"Ziel\\Zweites.zip", "altes Archiv");
    const TExport second = StartExport(Path(L""), {L"groß.ipt"});
    second.ExportAs(Path(L"Ziel\\Zweites.zip"));
    EXPECT_EQ(second.Program.TextOfClosedBox(),
              L"Der Ordner \"" + Path(kStaging) +
                  L"\" kann nicht für den Export verwendet werden: Ein anderer Export benutzt ihn gerade.");
    EXPECT_EQ(ReadFile(L"Ziel\\Zweites.zip"), "altes Archiv");
  }
  ExpectExported(run, Path(L"Ziel\\Archiv.zip"));
}
