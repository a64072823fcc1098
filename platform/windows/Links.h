#pragma once

#include <windows.h>

/// Not every reparse point leads elsewhere: a file that lies in the cloud, say, is a file. Wine names no tag.
inline bool IsLink(const WIN32_FIND_DATAW& found) {
  if ((found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return false;
  return found.dwReserved0 == 0 || IsReparseTagNameSurrogate(found.dwReserved0);
}
