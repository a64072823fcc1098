#include "ui/SaveDialog.h"

#include <windows.h>

#include <shlobj.h>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"
#include "ui/Form.h"

namespace {

using TDialog = TComReference<IFileSaveDialog>;
using TItem = TComReference<IShellItem>;

void Check(HRESULT result) {
  if (FAILED(result)) throw SystemError(static_cast<DWORD>(result));
}

/// The shell is loaded for this and not with the program, whose other tasks do not need it.
TItem ItemOf(const UnicodeString& path) {
  TItem item;
  const HMODULE shell = ::LoadLibraryExW(L"shell32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (shell == nullptr || path.empty()) return item;
  const auto create = reinterpret_cast<decltype(&::SHCreateItemFromParsingName)>(
      reinterpret_cast<void*>(::GetProcAddress(shell, "SHCreateItemFromParsingName")));
  item.ReceiveFrom(
      [&](IShellItem** received) { return create(Wide(path), nullptr, IID_PPV_ARGS(received)); });
  return item;
}

void SetOptions(TDialog& dialog) {
  FILEOPENDIALOGOPTIONS options = 0;
  Check(dialog->GetOptions(&options));
  options &= ~static_cast<FILEOPENDIALOGOPTIONS>(FOS_OVERWRITEPROMPT);
  Check(dialog->SetOptions(options | FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST | FOS_NOCHANGEDIR));
}

UnicodeString PathOf(const TItem& item) {
  PWSTR name = nullptr;
  Check(item->GetDisplayName(SIGDN_FILESYSPATH, &name));
  UnicodeString path(FromWide(name));
  ::CoTaskMemFree(name);
  return path;
}

}  // namespace

std::optional<UnicodeString> TSaveDialog::Ask(const TForm& owner) const {
  TDialog dialog;
  Check(dialog.ReceiveFrom([](IFileSaveDialog** received) {
    return ::CoCreateInstance(CLSID_FileSaveDialog, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(received));
  }));
  SetOptions(dialog);
  const std::vector<TFilter> filters = Filters();
  std::vector<COMDLG_FILTERSPEC> specs;
  for (const TFilter& filter : filters) specs.push_back({Wide(filter.Description), Wide(filter.Pattern)});
  if (!specs.empty()) Check(dialog->SetFileTypes(static_cast<UINT>(specs.size()), specs.data()));
  Check(dialog->SetTitle(Wide(Title)));
  Check(dialog->SetFileName(Wide(FileName)));
  const UnicodeString extension(Extension());
  if (!extension.empty()) Check(dialog->SetDefaultExtension(Wide(extension)));
  if (const TItem folder = ItemOf(InitialDir)) Check(dialog->SetFolder(folder.Get()));

  const HRESULT shown = dialog->Show(reinterpret_cast<HWND>(owner.Handle()));
  // Seen under Wine: the host's window came to the front in place of the owner.
  ::SetForegroundWindow(reinterpret_cast<HWND>(owner.Handle()));
  if (shown == HRESULT_FROM_WIN32(ERROR_CANCELLED)) return std::nullopt;
  Check(shown);
  TItem chosen;
  Check(chosen.ReceiveFrom([&dialog](IShellItem** received) { return dialog->GetResult(received); }));
  return PathOf(chosen);
}
