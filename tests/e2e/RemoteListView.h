#pragma once

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <string>

#include "platform/windows/SystemHandles.h"

/// Reads the rows of a list view in another process, whose memory the texts have to pass through. Each
/// question waits until that process handles messages.
class TRemoteListView {
 public:
  explicit TRemoteListView(HWND list) : fList(list) {
    DWORD id = 0;
    ::GetWindowThreadProcessId(list, &id);
    fProcess.Reset(::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id));
    fItem = static_cast<LVITEMW*>(::VirtualAllocEx(
        fProcess.Get(), nullptr, sizeof(LVITEMW) + kLength * sizeof(wchar_t), MEM_COMMIT, PAGE_READWRITE));
  }
  ~TRemoteListView() { ::VirtualFreeEx(fProcess.Get(), fItem, 0, MEM_RELEASE); }
  TRemoteListView(const TRemoteListView&) = delete;
  TRemoteListView& operator=(const TRemoteListView&) = delete;

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
    ::WriteProcessMemory(fProcess.Get(), fItem, &item, sizeof item, nullptr);
    ::SendMessageW(fList, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(fItem));
  }
  std::wstring Text(std::size_t row, int column) const {
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = reinterpret_cast<wchar_t*>(fItem + 1);
    item.cchTextMax = kLength;
    ::WriteProcessMemory(fProcess.Get(), fItem, &item, sizeof item, nullptr);
    ::SendMessageW(fList, LVM_GETITEMTEXTW, row, reinterpret_cast<LPARAM>(fItem));
    std::array<wchar_t, kLength> text{};
    ::ReadProcessMemory(fProcess.Get(), item.pszText, text.data(), sizeof text, nullptr);
    return text.data();
  }

 private:
  static constexpr int kLength = 512;
  HWND fList;
  TFileHandle fProcess;
  LVITEMW* fItem;
};
