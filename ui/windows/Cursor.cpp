#include "ui/Cursor.h"

#include <windows.h>

namespace {

TCursor current = TCursor::Default;

}  // namespace

void SetScreenCursor(TCursor cursor) {
  current = cursor;
  ::SetCursor(::LoadCursorW(nullptr, cursor == TCursor::HourGlass ? IDC_WAIT : IDC_ARROW));
}

TCursor ScreenCursor() {
  return current;
}
