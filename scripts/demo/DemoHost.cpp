// A host application for the demonstration: shows a window whose title names it, starts the program over it
// and tells on standard output, a line for each event, what the program's windows show until it ends:
//
//   window LEFT TOP WIDTH HEIGHT    the status window has appeared
//   text TEXT                       the status text is a new one; a line break in it reads " | "
//   box TEXT                        the program shows a message box
//   exit CODE                       the program has ended
//
// Usage: DemoHost.exe PROGRAM ARGUMENT...
// Ends with the program's exit code, or with 125 when it cannot tell it.
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <array>
#include <cstdio>
#include <string>

#include "platform/windows/SystemHandles.h"

namespace {

constexpr int kNoResult = 125;
constexpr DWORD kPollMilliseconds = 10;
constexpr ULONGLONG kLongestRun = 60'000;

void Tell(const std::string& line) {
  std::fputs((line + "\n").c_str(), stdout);
  std::fflush(stdout);
}

std::string Utf8(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string bytes(text.size() * 3, '\0');
  bytes.resize(static_cast<std::size_t>(::WideCharToMultiByte(
      CP_UTF8, 0, text.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr)));
  return bytes;
}

/// Asks no message of the window: it does not answer while a task runs.
std::wstring TextOf(HWND window) {
  std::array<wchar_t, 4096> buffer{};
  const int length = ::InternalGetWindowText(window, buffer.data(), static_cast<int>(buffer.size()));
  return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string OneLine(const std::wstring& text) {
  std::wstring line;
  for (const wchar_t c : text) line += c < L' ' ? std::wstring(L" | ") : std::wstring(1, c);
  return Utf8(line);
}

/// The visible top-level window of the process; null when it has none of the class.
HWND FindWindowOf(DWORD process, const wchar_t* className) {
  HWND window = nullptr;
  while ((window = ::FindWindowExW(nullptr, window, className, nullptr)) != nullptr) {
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    if (owner == process && ::IsWindowVisible(window)) return window;
  }
  return nullptr;
}

/// Tells what has changed on the screen since the last look.
class TWatch {
 public:
  explicit TWatch(DWORD process) : fProcess(process) {}

  void Look() {
    if (const HWND form = FindWindowOf(fProcess, L"TfrmMain")) LookAtForm(form);
    const HWND box = FindWindowOf(fProcess, L"#32770");
    // The save dialog is of the same class, but has no such text.
    if (box != nullptr && box != fBox && ::GetDlgItem(box, 0xFFFF) != nullptr)
      Tell("box " + OneLine(TextOf(::GetDlgItem(box, 0xFFFF))));
    fBox = box;
  }

 private:
  void LookAtForm(HWND form) {
    RECT r{};
    if (!fShown && ::GetWindowRect(form, &r)) {
      fShown = true;
      Tell("window " + std::to_string(r.left) + " " + std::to_string(r.top) + " " +
           std::to_string(r.right - r.left) + " " + std::to_string(r.bottom - r.top));
    }
    const HWND panel = ::FindWindowExW(form, nullptr, L"TPanel", nullptr);
    const HWND label = ::FindWindowExW(panel, nullptr, L"TLabel", nullptr);
    if (label == nullptr) return;  // the window is being taken down
    const std::wstring text = TextOf(label);
    if (text == fText) return;
    fText = text;
    Tell("text " + OneLine(text));
  }

  DWORD fProcess;
  bool fShown = false;
  std::wstring fText;
  HWND fBox = nullptr;
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
  for (int i = 1; i < count; ++i) line.append(i > 1 ? L" \"" : L"\"").append(arguments[i]).append(L"\"");
  return line;
}

/// Lets the window of this process live while it waits.
bool EndsWithin(HANDLE process, DWORD milliseconds) {
  const DWORD result = ::MsgWaitForMultipleObjects(1, &process, FALSE, milliseconds, QS_ALLINPUT);
  MSG message{};
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
  return result == WAIT_OBJECT_0;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count < 2) return kNoResult;
  ::_setmode(::_fileno(stdout), _O_BINARY);  // no carriage returns in what a script reads
  ShowHostWindow();

  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION created{};
  std::wstring commandLine = CommandLineOf(count, arguments);
  if (!::CreateProcessW(arguments[1], commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &created)) {
    Tell("exit: cannot start the program, error " + std::to_string(::GetLastError()));
    return kNoResult;
  }
  const TFileHandle thread(created.hThread);
  const TFileHandle process(created.hProcess);

  TWatch watch(created.dwProcessId);
  const ULONGLONG end = ::GetTickCount64() + kLongestRun;
  while (!EndsWithin(process.Get(), kPollMilliseconds)) {
    watch.Look();
    if (::GetTickCount64() > end) {
      ::TerminateProcess(process.Get(), kNoResult);
      Tell("exit: the program does not end by itself");
      return kNoResult;
    }
  }
  DWORD code = kNoResult;
  ::GetExitCodeProcess(process.Get(), &code);
  Tell("exit " + std::to_string(code));
  return static_cast<int>(code);
}
