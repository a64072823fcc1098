#include "ui/Timer.h"

#include <windows.h>

#include <map>

#include "platform/windows/SystemHandles.h"
#include "ui/Application.h"
#include "ui/Form.h"

namespace {

/// The timers that run, by their ids.
std::map<UINT_PTR, TTimer*>& Running() {
  static std::map<UINT_PTR, TTimer*> running;
  return running;
}

/// A message may still be on its way after its timer has been stopped.
void CALLBACK TimerProc(HWND, UINT, UINT_PTR id, DWORD) {
  const auto found = Running().find(id);
  if (found != Running().end()) Application->Guard(found->second->OnTimer);
}

}  // namespace

void TTimer::Enable() {
  static UINT_PTR lastId = 0;
  Disable();
  Running().emplace(++lastId, this);
  fId = lastId;
  const HWND window = reinterpret_cast<HWND>(fForm.Handle());
  if (::SetTimer(window, fId, static_cast<UINT>(fInterval), TimerProc) != 0) return;
  const EError error = LastSystemError();
  Disable();
  throw error;
}

void TTimer::Disable() noexcept {
  if (Running().erase(fId) != 0) ::KillTimer(reinterpret_cast<HWND>(fForm.Handle()), fId);
  fId = 0;
}
