#pragma once

#include <windows.h>

#include <algorithm>

#include "platform/windows/Wide.h"

/// `path` as the system must be told it. From 248 characters on, the shortest limit (a folder's), an absolute
/// path gets the prefix that lifts all limits. Under that prefix the system takes names as they are, so "/",
/// "." and ".." are resolved before.
inline UnicodeString SystemPath(TextView path) {
  constexpr std::size_t kShortestLimit = 248;
  UnicodeString name(path);
  const bool isDrive = path.size() > 2 && path[1] == u':' && (path[2] == u'\\' || path[2] == u'/');
  const bool isShare =
      path.starts_with(u"\\\\") && !path.starts_with(u"\\\\?\\") && !path.starts_with(u"\\\\.\\");
  if (path.size() < kShortestLimit || (!isDrive && !isShare)) return name;

  UnicodeString full(path.size() + 1, u'\0');
  const DWORD length =
      ::GetFullPathNameW(Wide(name), static_cast<DWORD>(full.size()), WideBuffer(full), nullptr);
  // Resolving only ever shortens; should the system see that differently, it gets the name as it is.
  if (length == 0 || length >= full.size()) return name;
  full.resize(length);
  return isShare ? u"\\\\?\\UNC" + full.substr(1) : u"\\\\?\\" + full;
}

/// Not every reparse point leads elsewhere: a file in the cloud, say, is a file. Wine names no tag.
inline bool IsLink(const WIN32_FIND_DATAW& found) {
  if ((found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return false;
  return found.dwReserved0 == 0 || IsReparseTagNameSurrogate(found.dwReserved0);
}
