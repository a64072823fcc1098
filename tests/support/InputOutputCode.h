#pragma once

#include <gtest/gtest.h>

#include "platform/Error.h"

/// The code of the input/output error that leaves `action`; 0 when none does.
template <class TAction>
std::int32_t InputOutputCode(const TAction& action) {
  try {
    action();
  } catch (const EError& error) {
    EXPECT_EQ(error.Kind(), TErrorKind::InputOutput);
    return error.Code();
  }
  return 0;
}
