#include "ui/Screen.h"

#include "headless/Machine.h"

using headless::Machine;

void SetScreenCursor(TCursor cursor) {
  Machine().HourGlass = cursor == TCursor::HourGlass;
  Machine().Record(Machine().HourGlass ? "cursor hourglass" : "cursor default");
}

TCursor ScreenCursor() {
  return Machine().HourGlass ? TCursor::HourGlass : TCursor::Default;
}
