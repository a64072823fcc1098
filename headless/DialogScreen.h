#pragma once

#include "platform/Text.h"

namespace headless {

/// What a user does with the dialog that was opened last and is still there. Throws std::logic_error where
/// there is no such dialog or button.
struct TDialogScreen {
  static void Press(TextView button);
  static void PressEnter();
  static void PressEscape();
  /// Drags the border until the client area has this size, in pixels; not below the least one.
  static void Resize(int width, int height);
};

}  // namespace headless
