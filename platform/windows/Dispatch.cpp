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
#include "platform/windows/VariantConversion.h"

static_assert(sizeof(TGuid) == sizeof(GUID));

namespace {

/// One reference to whatever interface was asked for.
class TUnknown {
 public:
  TUnknown() = default;
  ~TUnknown() {
    if (fObject != nullptr) fObject->Release();
  }
  TUnknown(const TUnknown&) = delete;
  TUnknown& operator=(const TUnknown&) = delete;

  IUnknown* operator->() const noexcept { return fObject; }
  /// Where the system puts the reference; only while this is empty.
  void** Target() noexcept { return reinterpret_cast<void**>(&fObject); }

 private:
  IUnknown* fObject = nullptr;
};

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
    TUnknown proxy;
    if (FAILED(object->QueryInterface(IID_IClientSecurity, proxy.Target()))) fInfo.pfnDeferredFillIn(&fInfo);
  }

  /// The component's own words; without any, the system's text for its code where that is an HRESULT.
  EError Error() const {
    const bool hasResult = FAILED(fInfo.scode);
    UnicodeString description(FromBstr(fInfo.bstrDescription));
    if (description.empty()) description = SystemErrorText(hasResult ? fInfo.scode : DISP_E_EXCEPTION);
    return {TErrorKind::Component, hasResult ? fInfo.scode : std::int32_t{fInfo.wCode},
            std::move(description), UnicodeString(FromBstr(fInfo.bstrSource))};
  }

 private:
  EXCEPINFO fInfo{};
};

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
  const HRESULT outcome =
      object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, InvokeFlag(kind), parameters.Get(),
                     kind == TInvokeKind::Put ? nullptr : result.Get(), info.Get(), nullptr);
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
  TUnknown created;
  HRESULT outcome =
      ::CoCreateInstance(std::bit_cast<GUID>(clsid), nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                         IID_IUnknown, created.Target());
  if (FAILED(outcome)) throw ComponentError(outcome);
  void* asked = nullptr;
  outcome = created->QueryInterface(std::bit_cast<GUID>(iid), &asked);
  if (FAILED(outcome)) throw ComponentError(outcome);
  return AdoptComObject(static_cast<IDispatch*>(asked));
}
