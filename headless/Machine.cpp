#include "headless/Machine.h"

#include <algorithm>

#include "platform/DesktopWindows.h"
#include "platform/DispatchTarget.h"
#include "platform/Error.h"
#include "platform/Variant.h"

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

using headless::Machine;
using headless::TDesktopWindow;

namespace {

constexpr std::size_t kLongestTitle = 254;

TDesktopWindow* Find(TWindowHandle window) {
  const auto& order = Machine().ZOrder;
  const auto found = std::ranges::find(order, reinterpret_cast<TDesktopWindow*>(window));
  return found != order.end() ? *found : nullptr;
}

TWindowHandle HandleOf(TDesktopWindow* window) {
  return reinterpret_cast<TWindowHandle>(window);
}

}  // namespace

TWindowHandle FirstWindow(TWindowHandle) {
  const auto& order = Machine().ZOrder;
  return order.empty() ? nullptr : HandleOf(order.front());
}

TWindowHandle NextWindow(TWindowHandle window) {
  const auto& order = Machine().ZOrder;
  const auto found = std::ranges::find(order, reinterpret_cast<TDesktopWindow*>(window));
  return found == order.end() || found + 1 == order.end() ? nullptr : HandleOf(*(found + 1));
}

UnicodeString WindowTitle(TWindowHandle window) {
  const TDesktopWindow* found = Find(window);
  return found != nullptr ? found->Title.substr(0, kLongestTitle) : UnicodeString();
}

std::optional<TRect> WindowRect(TWindowHandle window) {
  const TDesktopWindow* found = Find(window);
  return found != nullptr ? std::optional(found->Bounds) : std::nullopt;
}

TRect WorkAreaAt(const TRect&) {
  return Machine().WorkArea;
}

int DpiAt(const TRect&) {
  return Machine().Dpi;
}

/// An object of the headless world: a target and the references to it.
struct TDispatch::TObject {
  std::shared_ptr<TDispatchTarget> Target;
  int References = 1;
};

void TDispatch::AddReference(TObject* object) noexcept {
  if (object != nullptr) ++object->References;
}

void TDispatch::ReleaseReference(TObject* object) noexcept {
  if (object != nullptr && --object->References == 0) delete object;
}

TDispatch TDispatch::Adopt(TObject* object) noexcept {
  TDispatch reference;
  reference.fObject = object;
  return reference;
}

TVariant TDispatch::Invoke(std::int32_t id, TInvokeKind kind, std::span<const TVariant> arguments) const {
  if (fObject == nullptr) throw ComponentError(kTypeMismatch);
  const TDispatch alive = *this;  // the call may release the reference that it came through
  try {
    return fObject->Target->Invoke(id, kind, arguments);
  } catch (const EError& error) {
    throw ComponentError(error.Code() < 0 ? error.Code() : kException, error.Message(), error.Source());
  }
}

TDispatch MakeDispatch(std::shared_ptr<TDispatchTarget> target, const TGuid*) {
  return TDispatch::Adopt(new TDispatch::TObject{std::move(target)});
}

std::shared_ptr<TDispatchTarget> TargetOf(const TDispatch& reference) {
  return reference ? reference.Get()->Target : nullptr;
}

TComApartment::TComApartment() noexcept = default;
TComApartment::~TComApartment() = default;

TDispatch CreateInstance(const TGuid& clsid, const TGuid& iid) {
  if (!Machine().CreateInstance) throw ComponentError(kClassNotRegistered);
  return Machine().CreateInstance(clsid, iid);
}
