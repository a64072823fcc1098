#include "tests/e2e/Support.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/e2e/RemoteListView.h"

namespace {

bool HasClass(HWND window, const wchar_t* name) {
  std::array<wchar_t, 256> found{};
  ::GetClassNameW(window, found.data(), static_cast<int>(found.size()));
  return std::wstring_view(found.data()) == name;
}

}  // namespace

std::wstring BuiltPath(const std::wstring& file) {
  std::wstring name(32'768, L'\0');
  name.resize(::GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
  return (std::filesystem::path(name).parent_path() / file).wstring();
}

bool WaitUntil(const std::function<bool()>& condition, DWORD milliseconds) {
  const ULONGLONG end = ::GetTickCount64() + milliseconds;
  while (!condition()) {
    if (::GetTickCount64() > end) return false;
    ::Sleep(5);
  }
  return true;
}

std::wstring TextOf(HWND window) {
  // Asks no message of the window: it does not answer while a task runs.
  std::array<wchar_t, 4096> text{};
  const int length = ::InternalGetWindowText(window, text.data(), static_cast<int>(text.size()));
  return {text.data(), static_cast<std::size_t>(length)};
}

std::wstring MessageOf(HWND box) {
  return TextOf(::GetDlgItem(box, 0xFFFF));
}

bool HasIcon(HWND box) {
  return ::SendMessageW(::GetDlgItem(box, 1088), STM_GETICON, 0, 0) != 0;
}

RECT BoundsOf(HWND window) {
  RECT bounds{};
  ::GetWindowRect(window, &bounds);
  return bounds;
}

bool SameRect(const RECT& a, const RECT& b) {
  return ::EqualRect(&a, &b) != 0;
}

THostWindow::THostWindow(const wchar_t* title, RECT bounds, bool visible)
    : fWindow(::CreateWindowExW(0, L"STATIC", title, WS_POPUP | WS_BORDER, bounds.left, bounds.top,
                                bounds.right - bounds.left, bounds.bottom - bounds.top, nullptr, nullptr,
                                nullptr, nullptr)) {
  const UINT show = visible ? SWP_SHOWWINDOW : 0;
  ::SetWindowPos(fWindow, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | show);
}

TProgram::TProgram(const std::wstring& arguments, const TEnvironment& changes,
                   const std::optional<std::wstring>& standardInput) {
  const std::wstring executable = BuiltPath(L"VelmoraInventor.exe");
  std::wstring commandLine = L"\"" + executable + L"\" " + arguments;
  for (const auto& [name, value] : changes) ::SetEnvironmentVariableW(name.c_str(), value.c_str());
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  const TFileHandle input(standardInput ? ::CreateFileW(standardInput->c_str(), GENERIC_READ, FILE_SHARE_READ,
                                                        &inherited, OPEN_EXISTING, 0, nullptr)
                                        : INVALID_HANDLE_VALUE);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  if (input) {
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.Get();
  }
  PROCESS_INFORMATION process{};
  const BOOL started = ::CreateProcessW(executable.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                                        DETACHED_PROCESS, nullptr, nullptr, &startup, &process);
  for (const auto& [name, value] : changes) ::SetEnvironmentVariableW(name.c_str(), nullptr);
  if (!started) {
    ADD_FAILURE() << "cannot start the program";
    return;
  }
  const TFileHandle thread(process.hThread);
  fProcess.Reset(process.hProcess);
  fId = process.dwProcessId;
}

TProgram::~TProgram() {
  if (!fProcess || HasEnded()) return;
  ::TerminateProcess(fProcess.Get(), 1);
  ::WaitForSingleObject(fProcess.Get(), 10'000);
}

HWND TProgram::FindOwnWindow(const wchar_t* className, const wchar_t* title) const {
  for (HWND window = ::GetTopWindow(nullptr); window != nullptr; window = ::GetWindow(window, GW_HWNDNEXT)) {
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    if (owner == fId && HasClass(window, className) && ::IsWindowVisible(window) &&
        (title == nullptr || TextOf(window) == title)) {
      return window;
    }
  }
  return nullptr;
}

HWND TProgram::VisibleWindow(const wchar_t* className, const wchar_t* title) const {
  HWND window = nullptr;
  WaitUntil([&] { return (window = FindOwnWindow(className, title)) != nullptr || HasEnded(); });
  return window;
}

std::wstring TProgram::TextOfClosedBox() const {
  const HWND box = MessageBox();
  std::wstring text = MessageOf(box);
  ::PostMessageW(::FindWindowExW(box, nullptr, L"Button", nullptr), BM_CLICK, 0, 0);
  EXPECT_TRUE(WaitUntil([box] { return !::IsWindow(box); }));
  return text;
}

std::wstring TProgram::StatusText() const {
  const HWND form = FindOwnWindow(L"TfrmMain");
  const HWND panel = ::FindWindowExW(form, nullptr, L"TPanel", nullptr);
  return TextOf(::FindWindowExW(panel, nullptr, L"TLabel", nullptr));
}

bool TProgram::WaitForStatus(const std::wstring& text) const {
  return WaitUntil([&] { return StatusText() == text || HasEnded(); }) && !HasEnded();
}

std::optional<DWORD> TProgram::WaitForExit() const {
  DWORD code = 0;
  if (!WaitUntil([this] { return HasEnded(); }) || !::GetExitCodeProcess(fProcess.Get(), &code))
    return std::nullopt;
  return code;
}

TExportDialog::TExportDialog(const TProgram& program) : fWindow(program.VisibleWindow(L"TfrmExportAsm")) {}

std::vector<std::string> TExportDialog::Rows() const {
  const TRemoteListView list(List());
  std::vector<std::string> rows;
  for (std::size_t row = 0; row < list.RowCount(); ++row) {
    std::wstring text = list.Text(row, 0);
    for (int column = 1; column < list.ColumnCount(); ++column) text += L" | " + list.Text(row, column);
    rows.push_back(Utf8FromText(FromWide(text.c_str())));
  }
  return rows;
}

EndToEnd::EndToEnd() {
  static int folders = 0;
  const std::wstring name =
      L"velmora-" + std::to_wstring(::GetCurrentProcessId()) + L"-" + std::to_wstring(++folders);
  fFolder = (std::filesystem::temp_directory_path() / name).wstring();
  std::filesystem::create_directories(Path(L"AppData"));
}

EndToEnd::~EndToEnd() {
  std::error_code ignored;
  std::filesystem::remove_all(fFolder, ignored);
}

void EndToEnd::WriteFile(const std::wstring& name, const std::string& bytes) const {
  const std::filesystem::path path(Path(name));
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string EndToEnd::ReadFile(const std::wstring& name) const {
  std::ifstream stream(std::filesystem::path(Path(name)), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

bool EndToEnd::Exists(const std::wstring& name) const {
  return std::filesystem::exists(Path(name));
}

TProgram::TEnvironment EndToEnd::Environment(TProgram::TEnvironment more) const {
  more[L"APPDATA"] = Path(L"AppData");
  more[L"APPRENTICE_TRACE"] = Path(L"trace.txt");
  return more;
}

std::vector<std::string> EndToEnd::Trace() const {
  std::ifstream stream(std::filesystem::path(Path(L"trace.txt")));
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}
