#pragma once

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <string>

#include "platform/windows/SystemHandles.h"

/// Memory of the process that `window` belongs to: what the system does not carry between processes with a
/// message has to be there.
class TRemoteMemory {
 public:
  TRemoteMemory(HWND window, std::size_t size) {
    DWORD id = 0;
    ::GetWindowThreadProcessId(window, &id);
    fProcess.Reset(::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id));
    fAddress = ::VirtualAllocEx(fProcess.Get(), nullptr, size, MEM_COMMIT, PAGE_READWRITE);
  }
  ~TRemoteMemory() { ::VirtualFreeEx(fProcess.Get(), fAddress, 0, MEM_RELEASE); }
  TRemoteMemory(const TRemoteMemory&) = delete;
  TRemoteMemory& operator=(const TRemoteMemory&) = delete;

  LPARAM Address() const { return reinterpret_cast<LPARAM>(fAddress); }
  void Write(const void* data, std::size_t size) const {
    ::WriteProcessMemory(fProcess.Get(), fAddress, data, size, nullptr);
  }
  /// From so many bytes after the beginning.
  void Read(std::size_t offset, void* data, std::size_t size) const {
    ::ReadProcessMemory(fProcess.Get(), static_cast<char*>(fAddress) + offset, data, size, nullptr);
  }

 private:
  TFileHandle fProcess;
  void* fAddress;
};

/// Reads the rows of a list view in another process. Each question waits until that process handles messages.
class TRemoteListView {
 public:
  explicit TRemoteListView(HWND list) : fList(list), fItem(list, sizeof(LVITEMW) + sizeof(TText)) {}

  std::size_t RowCount() const {
    return static_cast<std::size_t>(::SendMessageW(fList, LVM_GETITEMCOUNT, 0, 0));
  }
  int ColumnCount() const {
    const auto header = reinterpret_cast<HWND>(::SendMessageW(fList, LVM_GETHEADER, 0, 0));
    return static_cast<int>(::SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
  }
  int ColumnWidth(int column) const {
    return static_cast<int>(::SendMessageW(fList, LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(column), 0));
  }
  /// As a screen reader does it.
  void Select(std::size_t row) const {
    LVITEMW item{};
    item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    fItem.Write(&item, sizeof item);
    ::SendMessageW(fList, LVM_SETITEMSTATE, row, fItem.Address());
  }
  std::wstring Text(std::size_t row, int column) const {
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = reinterpret_cast<wchar_t*>(fItem.Address() + LPARAM{sizeof item});
    item.cchTextMax = kLength;
    fItem.Write(&item, sizeof item);
    ::SendMessageW(fList, LVM_GETITEMTEXTW, row, fItem.Address());
    TText text{};
    fItem.Read(sizeof item, text.data(), sizeof text);
    return text.data();
  }

 private:
  static constexpr int kLength = 512;
  using TText = std::array<wchar_t, kLength>;

  HWND fList;
  TRemoteMemory fItem;
};
