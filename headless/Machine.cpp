#include "headless/Machine.h"

#include <algorithm>

#include "platform/Error.h"

namespace headless {

TMachine& Machine() {
  static TMachine machine;
  return machine;
}

bool Fails(const char* call) {
  if (++Machine().CallCount != Machine().FailCall) return false;
  Machine().FailedCall = call;
  return true;
}

void ThrowIfFails(const char* call) {
  if (Fails(call)) throw InputOutputError(kAccessDenied);
}

std::filesystem::path HostPath(TextView path) {
  UnicodeString name(path);
  std::ranges::replace(name, u'\\', u'/');
  if (name.size() > 1 && name[1] == u':') name.erase(1, 1);
  name.erase(0, name.find_first_not_of(u'/'));
  return Machine().Root / std::filesystem::path(Utf8FromText(name));
}

}  // namespace headless
