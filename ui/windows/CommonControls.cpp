#include "ui/windows/CommonControls.h"

#include "platform/windows/SystemHandles.h"

namespace {

template <class TFunction>
void Find(HMODULE module, const char* name, TFunction& function) {
  function = reinterpret_cast<TFunction>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
  if (function == nullptr) throw LastSystemError();
}

/// The manifest decides which version a plain file name means.
TCommonControls Load() {
  const HMODULE module = ::LoadLibraryW(L"comctl32.dll");
  if (module == nullptr) throw LastSystemError();
  TCommonControls controls;
  Find(module, "InitCommonControlsEx", controls.InitCommonControlsEx);
  Find(module, "SetWindowSubclass", controls.SetWindowSubclass);
  Find(module, "RemoveWindowSubclass", controls.RemoveWindowSubclass);
  Find(module, "DefSubclassProc", controls.DefSubclassProc);
  Find(module, "ImageList_Create", controls.ImageListCreate);
  Find(module, "ImageList_Destroy", controls.ImageListDestroy);
  Find(module, "LoadIconWithScaleDown", controls.LoadIconWithScaleDown);
  const INITCOMMONCONTROLSEX classes{
      sizeof classes, ICC_STANDARD_CLASSES | ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_PROGRESS_CLASS};
  if (!controls.InitCommonControlsEx(&classes)) throw LastSystemError();
  return controls;
}

}  // namespace

const TCommonControls& CommonControls() {
  static const TCommonControls controls = Load();
  return controls;
}
