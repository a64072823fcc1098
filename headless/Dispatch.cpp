#include "platform/Dispatch.h"

#include "headless/Machine.h"
#include "platform/DispatchTarget.h"
#include "platform/Error.h"
#include "platform/Variant.h"

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
  const TDispatch alive = *this;  // the call may let go of the reference that it came through
  try {
    return fObject->Target->Invoke(id, kind, arguments);
  } catch (const EError& error) {
    if (error.Message().empty()) throw ComponentError(error.Code());
    throw;
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
  if (!headless::Machine().CreateInstance) throw ComponentError(kClassNotRegistered);
  return headless::Machine().CreateInstance(clsid, iid);
}
