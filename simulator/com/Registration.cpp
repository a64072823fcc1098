#include "simulator/com/Registration.h"

#include <olectl.h>

#include <array>

#include "platform/Handle.h"
#include "platform/windows/Wide.h"

namespace {

using TRegistryKey = TUniqueHandle<HKEY, ::RegCloseKey>;

constexpr TextView kClassKey = u"Software\\Classes\\CLSID\\{C343ED84-A129-11D3-B799-0060B0F159EF}";
constexpr TextView kInProcess = u"InprocServer32";
constexpr TextView kOwnProcess = u"LocalServer32";

enum class TEntry { None, Own, Foreign };

UnicodeString KeyPath(TextView serverKey) {
  UnicodeString path(kClassKey);
  path += u'\\';
  return path += serverKey;
}

bool SameFile(TextView a, TextView b) {
  return ::CompareStringOrdinal(Wide(a.data()), static_cast<int>(a.size()), Wide(b.data()),
                                static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

/// Reads the key's default value. ERROR_FILE_NOT_FOUND: there is none.
LSTATUS ReadDefault(HKEY scope, const UnicodeString& path, DWORD view, UnicodeString& value) {
  constexpr DWORD kLongest = 32768;  // characters
  value.resize(kLongest);
  DWORD size = kLongest * sizeof(char16_t);
  const LSTATUS status =
      ::RegGetValueW(scope, Wide(path), nullptr, RRF_RT_REG_SZ | view, nullptr, WideBuffer(value), &size);
  value.resize(status == ERROR_SUCCESS ? size / sizeof(char16_t) : 0);
  while (!value.empty() && value.back() == u'\0') value.pop_back();
  return status;
}

/// Who is registered below `serverKey`. An entry that cannot be read counts as foreign.
TEntry EntryOf(HKEY scope, TextView serverKey, DWORD view, TextView dllPath) {
  UnicodeString file;
  const LSTATUS status = ReadDefault(scope, KeyPath(serverKey), view, file);
  const bool none = status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
  if (none || (status == ERROR_SUCCESS && file.empty())) return TEntry::None;
  return status == ERROR_SUCCESS && SameFile(file, dllPath) ? TEntry::Own : TEntry::Foreign;
}

/// The view of 32-bit programs counts too: a 32-bit component in a process of its own serves 64-bit clients.
bool AnotherFileIsRegistered(TextView dllPath) {
  for (const HKEY scope : std::array{HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    for (const DWORD view : std::array<DWORD, 2>{RRF_SUBKEY_WOW6464KEY, RRF_SUBKEY_WOW6432KEY}) {
      for (const TextView serverKey : {kInProcess, kOwnProcess}) {
        if (EntryOf(scope, serverKey, view, dllPath) == TEntry::Foreign) return true;
      }
    }
  }
  return false;
}

LSTATUS SetText(const TRegistryKey& key, const wchar_t* name, const UnicodeString& text) {
  const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(char16_t));
  return ::RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), size);
}

TRegistryKey OpenKey(HKEY scope, TextView path, REGSAM access) {
  HKEY key = nullptr;
  ::RegOpenKeyExW(scope, Wide(UnicodeString(path)), 0, access | KEY_WOW64_64KEY, &key);
  return TRegistryKey(key);
}

/// Deletes the key of the class if nothing is left in it; what others have put there stays.
void DeleteClassKeyIfEmpty(HKEY scope) {
  DWORD keys = 0;
  DWORD values = 0;
  const TRegistryKey key = OpenKey(scope, kClassKey, KEY_QUERY_VALUE);
  const LSTATUS status = ::RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr,
                                            &values, nullptr, nullptr, nullptr, nullptr);
  if (status != ERROR_SUCCESS || keys > 0 || values > 0) return;
  ::RegDeleteKeyExW(scope, Wide(UnicodeString(kClassKey)), KEY_WOW64_64KEY, 0);
}

}  // namespace

namespace simulator {

HRESULT Register(HKEY scope, const UnicodeString& dllPath) {
  if (AnotherFileIsRegistered(dllPath)) return SELFREG_E_CLASS;
  HKEY created = nullptr;
  LSTATUS status = ::RegCreateKeyExW(scope, Wide(KeyPath(kInProcess)), 0, nullptr, 0,
                                     KEY_SET_VALUE | KEY_WOW64_64KEY, nullptr, &created, nullptr);
  const TRegistryKey key(created);
  // The file last: an incomplete entry names none and is never used.
  if (status == ERROR_SUCCESS) status = SetText(key, L"ThreadingModel", u"Apartment");
  if (status == ERROR_SUCCESS) status = SetText(key, nullptr, dllPath);
  return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

HRESULT Unregister(HKEY scope, const UnicodeString& dllPath) {
  if (EntryOf(scope, kInProcess, RRF_SUBKEY_WOW6464KEY, dllPath) != TEntry::Own) return S_OK;
  const TRegistryKey key =
      OpenKey(scope, kClassKey, KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE | DELETE);
  if (!key) return HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);
  const LSTATUS status = ::RegDeleteTreeW(key.Get(), Wide(UnicodeString(kInProcess)));
  if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  DeleteClassKeyIfEmpty(scope);
  return S_OK;
}

}  // namespace simulator
