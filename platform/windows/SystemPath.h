#pragma once

#include <windows.h>

#include <algorithm>

#include "platform/windows/SystemHandles.h"
#include "platform/windows/Wide.h"

/// `path` as the system must be told it. From 248 characters on, the shortest limit (a folder's), an absolute
/// path gets the prefix that lifts all limits. After that prefix the system takes names as they are, so "/",
/// "." and ".." are resolved first. A path that has the prefix already gets single "\" between its names.
inline UnicodeString SystemPath(TextView path) {
  constexpr TextView kPrefix = u"\\\\?\\";
  constexpr std::size_t kShortestLimit = 248;
  const auto isSeparator = [](char16_t c) { return c == u'\\' || c == u'/'; };
  UnicodeString name(path);
  if (path.starts_with(kPrefix)) {
    std::ranges::replace(name, u'/', u'\\');
    const auto again = [](char16_t a, char16_t b) { return a == u'\\' && b == u'\\'; };
    name.erase(std::unique(name.begin() + kPrefix.size(), name.end(), again), name.end());
    return name;
  }
  const bool isDrive = path.size() > 2 && path[1] == u':' && isSeparator(path[2]);
  const bool isShare =
      path.size() > 2 && isSeparator(path[0]) && isSeparator(path[1]) && path[2] != u'?' && path[2] != u'.';
  if (path.size() < kShortestLimit || (!isDrive && !isShare)) return name;

  UnicodeString full(path.size() + 1, u'\0');
  const DWORD length =
      ::GetFullPathNameW(Wide(name), static_cast<DWORD>(full.size()), WideBuffer(full), nullptr);
  // Resolving only ever shortens; should the system see that differently, it gets the name as it is.
  if (length == 0 || length >= full.size()) return name;
  full.resize(length);
  return UnicodeString(kPrefix) + (isShare ? u"UNC" + full.substr(1) : full);
}

/// A file or folder, links followed, for asking about it: nobody keeps that out. Empty when it does not
/// exist.
inline TFileHandle OpenForQueries(TextView path) {
  return TFileHandle(::CreateFileW(Wide(SystemPath(path)), 0,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

/// Not every reparse point leads elsewhere: a file in the cloud, say, is a file. Wine names no tag.
inline bool IsLink(const WIN32_FIND_DATAW& found) {
  if ((found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return false;
  return found.dwReserved0 == 0 || IsReparseTagNameSurrogate(found.dwReserved0);
}
