#pragma once

#include <windows.h>

#include <commctrl.h>

#include "platform/Handle.h"

/// The functions of the common controls. They are loaded with the first control that needs them and not with
/// the program: most of its starts show none, and loading them costs more than all else that a start does.
struct TCommonControls {
  decltype(&::InitCommonControlsEx) InitCommonControlsEx = nullptr;
  decltype(&::SetWindowSubclass) SetWindowSubclass = nullptr;
  decltype(&::RemoveWindowSubclass) RemoveWindowSubclass = nullptr;
  decltype(&::DefSubclassProc) DefSubclassProc = nullptr;
  decltype(&::ImageList_Create) ImageListCreate = nullptr;
  decltype(&::ImageList_Destroy) ImageListDestroy = nullptr;
  decltype(&::LoadIconWithScaleDown) LoadIconWithScaleDown = nullptr;
};

/// Stay loaded until the program ends. Throws EError of kind System.
const TCommonControls& CommonControls();

inline void DestroyImageList(HIMAGELIST list) noexcept {
  CommonControls().ImageListDestroy(list);
}
using TImageListHandle = TUniqueHandle<HIMAGELIST, DestroyImageList>;
