#include "platform/Dispatch.h"

#include <windows.h>

#include <oaidl.h>
#include <objbase.h>

#include <bit>
#include <utility>
#include <vector>

#include "platform/Error.h"
#include "platform/System.h"
#include "platform/Variant.h"
#include "platform/windows/SystemHandles.h"
#include "platform/windows/VariantConversion.h"

static_assert(sizeof(TGuid) == sizeof(GUID));

namespace {

/// Asks for an interface, whatever it derives from. Empty when it is refused.
TComReference<IUnknown> Asked(IUnknown* object, REFIID iid) {
  TComReference<IUnknown> answer;
  answer.ReceiveFrom(
      [&](IUnknown** to) { return object->QueryInterface(iid, reinterpret_cast<void**>(to)); });
  return answer;
}

/// True for an object in another process or apartment.
bool IsProxy(IUnknown* object) {
  return static_cast<bool>(Asked(object, IID_IClientSecurity));
}

bool IsRejected(HRESULT outcome) {
  return outcome == RPC_E_CALL_REJECTED || outcome == RPC_E_SERVERCALL_RETRYLATER;
}

/// Makes a call again for up to ten seconds while a busy component in another process rejects it: a rejected
/// call was not executed. `isRejection` tells which outcomes say so.
template <class TCall, class TIsRejection = bool (*)(HRESULT)>
HRESULT CallWhileRejected(TCall call, TIsRejection isRejection = IsRejected) {
  constexpr int kPauseMilliseconds = 100;
  constexpr int kLimitMilliseconds = 10'000;
  const std::int64_t end = TickMilliseconds() + kLimitMilliseconds;
  for (;;) {
    const HRESULT outcome = call();
    if (!isRejection(outcome) || TickMilliseconds() >= end) return outcome;
    WaitMilliseconds(kPauseMilliseconds);
    MSG message;
    ::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);  // or Windows reports the windows as hanging
  }
}

/// The arguments of one call as DISPPARAMS wants them: the last one first, and the value of a property put
/// under the name that marks it as such. A strict component refuses a put without that name.
class TComArguments {
 public:
  TComArguments(TInvokeKind kind, std::span<const TVariant> arguments) : fVariants(arguments.size()) {
    auto place = fVariants.rbegin();
    for (const TVariant& argument : arguments) AssignComVariant(*(place++)->Get(), argument);
    if (!fVariants.empty()) fParameters.rgvarg = fVariants.front().Get();
    fParameters.cArgs = static_cast<UINT>(fVariants.size());
    if (kind == TInvokeKind::Put) {
      fParameters.rgdispidNamedArgs = &fPutName;
      fParameters.cNamedArgs = 1;
    }
  }
  TComArguments(const TComArguments&) = delete;
  TComArguments& operator=(const TComArguments&) = delete;

  DISPPARAMS* Get() noexcept { return &fParameters; }

 private:
  static_assert(sizeof(TComVariant) == sizeof(VARIANT));  // so they stand in a row as COM wants them

  std::vector<TComVariant> fVariants;
  DISPID fPutName = DISPID_PROPERTYPUT;
  DISPPARAMS fParameters{};
};

/// What the component says about a failed call.
class TExceptionInfo {
 public:
  TExceptionInfo() = default;
  ~TExceptionInfo() {
    ::SysFreeString(fInfo.bstrSource);
    ::SysFreeString(fInfo.bstrDescription);
    ::SysFreeString(fInfo.bstrHelpFile);
  }
  TExceptionInfo(const TExceptionInfo&) = delete;
  TExceptionInfo& operator=(const TExceptionInfo&) = delete;

  EXCEPINFO* Get() noexcept { return &fInfo; }

  /// Lets the component fill in what it has put off. Not for an object in another process: there the function
  /// pointer comes from the other address space and calling it crashes (seen under Wine).
  void FillIn(IDispatch* object) {
    if (fInfo.pfnDeferredFillIn == nullptr) return;
    if (!IsProxy(object)) fInfo.pfnDeferredFillIn(&fInfo);
  }

  /// With the component's own code, an HRESULT or a number; without either it stays DISP_E_EXCEPTION.
  EError Error() const {
    const std::int32_t number = fInfo.wCode != 0 ? fInfo.wCode : DISP_E_EXCEPTION;
    return ComponentError(FAILED(fInfo.scode) ? fInfo.scode : number,
                          UnicodeString(FromBstr(fInfo.bstrDescription)),
                          UnicodeString(FromBstr(fInfo.bstrSource)));
  }

 private:
  EXCEPINFO fInfo{};
};

/// Some components report success without an object.
void CheckCreated(HRESULT outcome, const IUnknown* object) {
  if (FAILED(outcome)) throw ComponentError(outcome);
  if (object == nullptr) throw ComponentError(kNoInterface);
}

constexpr WORD InvokeFlag(TInvokeKind kind) {
  switch (kind) {
    case TInvokeKind::Get:
      return DISPATCH_PROPERTYGET;
    case TInvokeKind::Put:
      return DISPATCH_PROPERTYPUT;
    case TInvokeKind::Method:
      break;
  }
  return DISPATCH_METHOD;
}

}  // namespace

void TDispatch::AddReference(TObject* object) noexcept {
  if (object != nullptr) reinterpret_cast<IDispatch*>(object)->AddRef();
}

void TDispatch::ReleaseReference(TObject* object) noexcept {
  if (object != nullptr) reinterpret_cast<IDispatch*>(object)->Release();
}

TDispatch TDispatch::Adopt(TObject* object) noexcept {
  TDispatch reference;
  reference.fObject = object;
  return reference;
}

TVariant TDispatch::Invoke(std::int32_t id, TInvokeKind kind, std::span<const TVariant> arguments) const {
  IDispatch* object = ComObject(*this);
  if (object == nullptr) throw ComponentError(kTypeMismatch);
  TComArguments parameters(kind, arguments);
  TComVariant result;
  TExceptionInfo info;
  UINT wrongArgument = 0;  // of no use here, but some components write it without asking
  const auto invoke = [&] {
    return object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, InvokeFlag(kind), parameters.Get(),
                          kind == TInvokeKind::Put ? nullptr : result.Get(), info.Get(), &wrongArgument);
  };
  HRESULT outcome = invoke();
  if (IsRejected(outcome) && IsProxy(object)) outcome = CallWhileRejected(invoke);
  if (SUCCEEDED(outcome)) return FromComVariant(*result.Get());
  if (outcome != DISP_E_EXCEPTION) throw ComponentError(outcome);
  info.FillIn(object);
  throw info.Error();
}

TComApartment::TComApartment() noexcept
    : fInitialized(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}

TComApartment::~TComApartment() {
  if (fInitialized) ::CoUninitialize();
}

TDispatch CreateInstance(const TGuid& clsid, const TGuid& iid) {
  TComReference<IUnknown> created;
  HRESULT outcome = CallWhileRejected([&] {
    return created.ReceiveFrom([&](IUnknown** to) {
      return ::CoCreateInstance(std::bit_cast<GUID>(clsid), nullptr,
                                CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER, IID_IUnknown,
                                reinterpret_cast<void**>(to));
    });
  });
  CheckCreated(outcome, created.Get());
  IDispatch* asked = nullptr;
  outcome = CallWhileRejected(
      [&] { return created->QueryInterface(std::bit_cast<GUID>(iid), reinterpret_cast<void**>(&asked)); },
      // A proxy may report the rejected question as a refused interface (seen under Wine).
      [&](HRESULT answer) {
        return IsRejected(answer) || (answer == E_NOINTERFACE && IsProxy(created.Get()));
      });
  CheckCreated(outcome, asked);
  return AdoptComObject(asked);
}
