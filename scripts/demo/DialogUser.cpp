// Uses the export dialog of the running program as a person would, for the demonstration:
//
//   DialogUser.exe place         waits until the dialog shows its rows; tells LEFT TOP WIDTH HEIGHT CAPTION
//   DialogUser.exe rows          tells the rows in view: two blanks for each level, then the cells
//   DialogUser.exe click TEXT    presses the button with this text and waits until the program has done it
//   DialogUser.exe export PATH   presses "Exportieren" and gives the save dialog this name; does not wait for
//   the end
//
// Ends with 1, and a line on standard output, when there is no such dialog or button.
#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <string>

#include "tests/e2e/RemoteListView.h"

namespace {

constexpr ULONGLONG kLongestScan = 30'000;
constexpr DWORD kPollMilliseconds = 20;

void Tell(const std::wstring& line) {
  const int length = static_cast<int>(line.size());
  std::string bytes(line.size() * 3, '\0');
  bytes.resize(static_cast<std::size_t>(::WideCharToMultiByte(
      CP_UTF8, 0, line.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr)));
  std::fputs((bytes + "\n").c_str(), stdout);
}

int Fail(const std::wstring& what) {
  Tell(L"DialogUser: " + what);
  return 1;
}

HWND ListOf(HWND dialog) {
  const HWND tree = ::FindWindowExW(dialog, nullptr, L"TTreeList", nullptr);
  return ::FindWindowExW(tree, nullptr, WC_LISTVIEWW, nullptr);
}

HWND ScannedDialog() {
  const ULONGLONG end = ::GetTickCount64() + kLongestScan;
  while (::GetTickCount64() < end) {
    const HWND dialog = ::FindWindowW(L"TfrmExportAsm", nullptr);
    if (::IsWindowVisible(dialog) && ::SendMessageW(ListOf(dialog), LVM_GETITEMCOUNT, 0, 0) > 0)
      return dialog;
    ::Sleep(kPollMilliseconds);
  }
  return nullptr;
}

int TellPlace(HWND dialog) {
  RECT r{};
  ::GetWindowRect(dialog, &r);
  std::wstring caption(256, L'\0');
  caption.resize(static_cast<std::size_t>(::InternalGetWindowText(dialog, caption.data(), 256)));
  Tell(std::to_wstring(r.left) + L" " + std::to_wstring(r.top) + L" " + std::to_wstring(r.right - r.left) +
       L" " + std::to_wstring(r.bottom - r.top) + L" " + caption);
  return 0;
}

int TellRows(HWND dialog) {
  const TRemoteListView list(ListOf(dialog));
  for (std::size_t row = 0; row < list.RowCount(); ++row) {
    // What a screen reader hears first is "Ebene 2, geöffnet": the tree's level.
    const int level = std::stoi(list.Text(row, 0).substr(6));
    std::wstring line((static_cast<std::size_t>(level) - 1) * 2, L' ');
    for (int column = 1; column < list.ColumnCount(); ++column) {
      line += (column > 1 ? L" | " : L"") + list.Text(row, column);
    }
    Tell(line);
  }
  return 0;
}

int Click(HWND dialog, const wchar_t* text) {
  const HWND button = ::FindWindowExW(dialog, nullptr, L"Button", text);
  if (button == nullptr) return Fail(std::wstring(L"there is no button ") + text);
  ::SendMessageW(button, BM_CLICK, 0, 0);
  return 0;
}

/// As Wine's save dialog has them: the edit line for the name, and the number of its button "save".
constexpr int kNameEdit = 1152;

HWND NameEditOf(HWND saveDialog) {
  HWND found = nullptr;
  ::EnumChildWindows(
      saveDialog,
      [](HWND child, LPARAM result) -> BOOL {
        if (::GetDlgCtrlID(child) != kNameEdit) return TRUE;
        *reinterpret_cast<HWND*>(result) = child;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

int Export(HWND dialog, const wchar_t* path) {
  const HWND button = ::FindWindowExW(dialog, nullptr, L"Button", L"Exportieren");
  if (button == nullptr) return Fail(L"there is no button Exportieren");
  ::PostMessageW(button, BM_CLICK, 0, 0);
  const ULONGLONG end = ::GetTickCount64() + kLongestScan;
  while (::GetTickCount64() < end) {
    const HWND saveDialog = ::FindWindowW(nullptr, L"Baugruppe exportieren nach");
    const HWND edit = saveDialog != nullptr ? NameEditOf(saveDialog) : nullptr;
    if (edit != nullptr && ::IsWindowVisible(saveDialog)) {
      ::SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path));
      ::PostMessageW(saveDialog, WM_COMMAND, IDOK, 0);
      return 0;
    }
    ::Sleep(kPollMilliseconds);
  }
  return Fail(L"the save dialog does not open");
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  ::_setmode(::_fileno(stdout), _O_BINARY);  // no carriage returns in what a script reads
  const std::wstring task = count > 1 ? arguments[1] : L"";
  const HWND dialog = ScannedDialog();
  if (dialog == nullptr) return Fail(L"the export dialog does not show its rows");
  if (task == L"place") return TellPlace(dialog);
  if (task == L"rows") return TellRows(dialog);
  if (task == L"click" && count > 2) return Click(dialog, arguments[2]);
  if (task == L"export" && count > 2) return Export(dialog, arguments[2]);
  return Fail(L"place, rows, click TEXT or export PATH?");
}
