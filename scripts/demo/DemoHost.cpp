// A host application for the demonstration: shows a window whose title names it, starts the program over it,
// tells on standard output what the program's windows show until it ends, and takes pictures of them. In the
// export dialog it does what a user would: opens all nodes and exports.
//
// Usage: DemoHost.exe FOLDER NAME PROGRAM SWITCH DOCUMENT [LIST]
// The pictures are FOLDER\NAME-1.png and so on; the archive goes to FOLDER. Ends with the program's exit
// code, or with 125 when something else went wrong.
#include <windows.h>

#include <objidl.h>

#include <fcntl.h>
#include <gdiplus.h>
#include <io.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/windows/SystemHandles.h"
#include "tests/e2e/RemoteListView.h"

namespace {

constexpr int kNoResult = 125;
constexpr DWORD kPollMilliseconds = 10;
constexpr DWORD kPaintMilliseconds = 100;  // until the screen has what the program paints at once
constexpr DWORD kListMilliseconds = 500;   // likewise, with all rows of the dialog
constexpr ULONGLONG kLongestWait = 60'000;
constexpr int kMarginX = 110;  // around the status window, so that its pictures show the host's window
constexpr int kMarginY = 90;
constexpr int kSaveDialogName = 1152;  // the edit line of Wine's save dialog

void Tell(const std::wstring& line) {
  const int length = static_cast<int>(line.size());
  std::string bytes(line.size() * 3, '\0');
  bytes.resize(static_cast<std::size_t>(::WideCharToMultiByte(
      CP_UTF8, 0, line.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr)));
  std::fputs(("  " + bytes + "\n").c_str(), stdout);
  std::fflush(stdout);
}

/// Sends no message to the window, which does not answer while a task runs. Line breaks become " | ".
std::wstring TextOf(HWND window) {
  std::array<wchar_t, 4096> buffer{};
  ::InternalGetWindowText(window, buffer.data(), static_cast<int>(buffer.size()));
  std::wstring line;
  for (const wchar_t c : std::wstring(buffer.data()))
    line += c < L' ' ? std::wstring(L" | ") : std::wstring(1, c);
  return line;
}

/// Returns when the condition holds or `milliseconds` have passed; until then this process's window lives.
template <class TCondition>
bool WaitUntil(TCondition condition, ULONGLONG milliseconds = kLongestWait) {
  const ULONGLONG end = ::GetTickCount64() + milliseconds;
  while (!condition()) {
    if (::GetTickCount64() > end) return false;
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
    ::Sleep(kPollMilliseconds);
  }
  return true;
}

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

/// Saves a part of the screen as a PNG file.
void SavePicture(const RECT& part, const std::wstring& file) {
  const HDC screen = ::GetDC(nullptr);
  const HDC memory = ::CreateCompatibleDC(screen);
  const HBITMAP bitmap = ::CreateCompatibleBitmap(screen, part.right - part.left, part.bottom - part.top);
  const HGDIOBJ before = ::SelectObject(memory, bitmap);
  ::BitBlt(memory, 0, 0, part.right - part.left, part.bottom - part.top, screen, part.left, part.top,
           SRCCOPY);
  ::SelectObject(memory, before);
  constexpr CLSID kPng = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
  const bool saved = Gdiplus::Bitmap(bitmap, nullptr).Save(file.c_str(), &kPng, nullptr) == Gdiplus::Ok;
  ::DeleteObject(bitmap);
  ::DeleteDC(memory);
  ::ReleaseDC(nullptr, screen);
  Require(saved, "a picture cannot be saved");
}

/// The program's windows as a user of the host sees and uses them.
class TUser {
 public:
  TUser(std::filesystem::path folder, std::wstring name, const std::filesystem::path& document)
      : fFolder(std::move(folder)),
        fName(std::move(name)),
        fArchive(fFolder / document.stem().replace_extension(L".zip")) {}

  /// Tells what has changed since the last look, and uses the export dialog once it shows its rows.
  void Look(DWORD process) {
    fProcess = process;
    if (const HWND form = VisibleWindow(L"TfrmMain")) LookAtStatus(form);
    if (const HWND box = VisibleWindow(L"#32770")) LookAtBox(box);
    const HWND dialog = VisibleWindow(L"TfrmExportAsm");
    if (dialog == nullptr || fDialogUsed || ::SendMessageW(ListOf(dialog), LVM_GETITEMCOUNT, 0, 0) == 0)
      return;
    fDialogUsed = true;
    UseDialog(dialog);
  }

 private:
  /// The process's visible top-level window of the class, or null.
  HWND VisibleWindow(const wchar_t* className) const {
    HWND window = nullptr;
    while ((window = ::FindWindowExW(nullptr, window, className, nullptr)) != nullptr) {
      DWORD owner = 0;
      ::GetWindowThreadProcessId(window, &owner);
      if (owner == fProcess && ::IsWindowVisible(window)) return window;
    }
    return nullptr;
  }

  static HWND ListOf(HWND dialog) {
    return ::FindWindowExW(::FindWindowExW(dialog, nullptr, L"TTreeList", nullptr), nullptr, WC_LISTVIEWW,
                           nullptr);
  }

  void TakePicture(HWND window, int marginX, int marginY) {
    RECT part{};
    ::GetWindowRect(window, &part);
    ::InflateRect(&part, marginX, marginY);
    const std::wstring file = fName + L"-" + std::to_wstring(++fPictures) + L".png";
    SavePicture(part, (fFolder / file).wstring());
    Tell(L"  picture " + file);
  }

  void LookAtStatus(HWND form) {
    const HWND panel = ::FindWindowExW(form, nullptr, L"TPanel", nullptr);
    const HWND label = ::FindWindowExW(panel, nullptr, L"TLabel", nullptr);
    const std::wstring text = TextOf(label);
    if (text.empty() || text == fStatus) return;
    fStatus = text;
    Tell(L"status window: " + text);
    ::Sleep(kPaintMilliseconds);
    TakePicture(form, kMarginX, kMarginY);
  }

  void LookAtBox(HWND box) {
    const HWND text =
        ::GetDlgItem(box, 0xFFFF);  // what a message box says; the save dialog has no such child
    if (text == nullptr || box == fBox) return;
    fBox = box;
    Tell(L"message box: " + TextOf(text));
  }

  void UseDialog(HWND dialog) {
    Tell(L"dialog: " + TextOf(dialog));
    TakeDrawnPicture(dialog);
    ::SendMessageW(Button(dialog, L"Alle Knoten öffnen"), BM_CLICK, 0, 0);
    TakeDrawnPicture(dialog);
    TellRows(ListOf(dialog));
    ::PostMessageW(Button(dialog, L"Exportieren"), BM_CLICK, 0, 0);
    AnswerSaveDialog();
    const bool packs = WaitUntil([this] {
      std::error_code error;
      return std::filesystem::exists(fFolder / L"~Archiv1.tmp", error) ||
             std::filesystem::exists(fArchive, error);
    });
    Require(packs, "the archive is not begun");
    Tell(L"packing into " + fArchive.filename().wstring());
    TakePicture(dialog, 0, 0);
  }

  void TakeDrawnPicture(HWND dialog) {
    ::Sleep(kListMilliseconds);
    TakePicture(dialog, 0, 0);
  }

  static HWND Button(HWND dialog, const wchar_t* text) {
    const HWND button = ::FindWindowExW(dialog, nullptr, L"Button", text);
    Require(button != nullptr, "a button is missing");
    return button;
  }

  static void TellRows(HWND window) {
    const TRemoteListView list(window);
    for (std::size_t row = 0; row < list.RowCount(); ++row) {
      // What a screen reader hears of a row names its level.
      const std::wstring name = list.Text(row, 0);
      const std::size_t level = name.find(L"Ebene ");
      std::wstring line(level == std::wstring::npos ? 0 : std::stoul(name.substr(level + 6)) * 2, L' ');
      for (int column = 1; column < list.ColumnCount(); ++column) {
        line += (column > 1 ? L" | " : L"") + list.Text(row, column);
      }
      Tell(line);
    }
  }

  void AnswerSaveDialog() const {
    HWND dialog = nullptr;
    HWND edit = nullptr;
    const bool opened = WaitUntil([&] {
      dialog = ::FindWindowW(nullptr, L"Baugruppe exportieren nach");
      ::EnumChildWindows(dialog, FindNameEdit, reinterpret_cast<LPARAM>(&edit));
      return dialog != nullptr && ::IsWindowVisible(dialog) && edit != nullptr;
    });
    Require(opened, "the save dialog does not open");
    ::SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(fArchive.c_str()));
    ::PostMessageW(dialog, WM_COMMAND, IDOK, 0);
  }

  static BOOL CALLBACK FindNameEdit(HWND child, LPARAM result) {
    if (::GetDlgCtrlID(child) == kSaveDialogName) *reinterpret_cast<HWND*>(result) = child;
    return TRUE;
  }

  std::filesystem::path fFolder;
  std::wstring fName;
  std::filesystem::path fArchive;
  DWORD fProcess = 0;
  int fPictures = 0;
  std::wstring fStatus;
  HWND fBox = nullptr;
  bool fDialogUsed = false;
};

void ShowHostWindow() {
  WNDCLASSW type{};
  type.lpfnWndProc = ::DefWindowProcW;
  type.hInstance = ::GetModuleHandleW(nullptr);
  type.hCursor = ::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  type.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
  type.lpszClassName = L"DemoHost";
  ::RegisterClassW(&type);
  // The word "VelMora" in the title is what the program finds its host by.
  ::CreateWindowExW(0, type.lpszClassName, L"Deckel 4711 - VelMora CAD", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                    380, 387, 520, 250, nullptr, nullptr, type.hInstance, nullptr);
}

/// Quoted as the program splits its command line: it knows no escape character.
std::wstring CommandLineOf(int count, wchar_t** arguments) {
  std::wstring line;
  for (int i = 0; i < count; ++i) line.append(i > 0 ? L" \"" : L"\"").append(arguments[i]).append(L"\"");
  return line;
}

int RunProgram(TUser& user, std::wstring commandLine) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION created{};
  Require(::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                           &startup, &created) != 0,
          "the program does not start");
  const TFileHandle thread(created.hThread);
  const TFileHandle process(created.hProcess);
  const bool ended = WaitUntil([&] {
    if (::WaitForSingleObject(process.Get(), 0) == WAIT_OBJECT_0) return true;
    user.Look(created.dwProcessId);
    return false;
  });
  if (!ended) ::TerminateProcess(process.Get(), kNoResult);
  Require(ended, "the program does not end by itself");
  DWORD code = kNoResult;
  ::GetExitCodeProcess(process.Get(), &code);
  Tell(L"the program has ended with " + std::to_wstring(code));
  return static_cast<int>(code);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count < 6) return kNoResult;
  ::_setmode(::_fileno(stdout), _O_BINARY);  // no carriage returns
  const Gdiplus::GdiplusStartupInput input;
  ULONG_PTR token = 0;
  Gdiplus::GdiplusStartup(&token, &input, nullptr);
  ShowHostWindow();
  try {
    TUser user(arguments[1], arguments[2], arguments[5]);
    return RunProgram(user, CommandLineOf(count - 3, arguments + 3));
  } catch (const std::exception& error) {
    std::printf("  DemoHost: %s\n", error.what());
    return kNoResult;
  }
}
