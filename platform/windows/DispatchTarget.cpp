#include "platform/DispatchTarget.h"

#include <windows.h>

#include <oaidl.h>
#include <oleauto.h>

#include <atomic>
#include <bit>
#include <new>
#include <optional>
#include <vector>

#include "platform/Error.h"
#include "platform/windows/VariantConversion.h"
#include "platform/windows/Wide.h"

namespace {

// Answered by our own objects alone: tells them from all others.
constexpr GUID kOwnTarget{0x5D0E3B8C, 0x7A41, 0x4E57, {0x9C, 0x16, 0x2F, 0x83, 0xD4, 0x60, 0xB7, 0x1A}};

/// A kind flag that stands alone; strict where the system would take a combination.
std::optional<TInvokeKind> KindOf(WORD flags) {
  switch (flags) {
    case DISPATCH_METHOD:
      return TInvokeKind::Method;
    case DISPATCH_PROPERTYGET:
      return TInvokeKind::Get;
    case DISPATCH_PROPERTYPUT:
      return TInvokeKind::Put;
    default:
      return std::nullopt;
  }
}

HRESULT CheckNames(TInvokeKind kind, const DISPPARAMS& parameters) {
  if (kind != TInvokeKind::Put) return parameters.cNamedArgs == 0 ? S_OK : DISP_E_NONAMEDARGS;
  const bool named = parameters.cNamedArgs == 1 && parameters.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  return named ? S_OK : DISP_E_PARAMNOTOPTIONAL;
}

std::vector<TVariant> Arguments(const DISPPARAMS& parameters) {
  std::vector<TVariant> arguments;
  for (UINT i = parameters.cArgs; i > 0; --i) arguments.push_back(FromComVariant(parameters.rgvarg[i - 1]));
  return arguments;
}

/// A text of an error; null, which is a legal empty one, when there is no room.
BSTR ErrorText(TextView text) noexcept {
  return ::SysAllocStringLen(Wide(text.data()), static_cast<UINT>(text.size()));
}

HRESULT Fail(EXCEPINFO* info, const EError& error) noexcept {
  if (error.Message().empty()) return error.Code();
  if (info == nullptr) return DISP_E_EXCEPTION;
  *info = {};
  info->scode = error.Code();
  info->bstrDescription = ErrorText(error.Message());
  info->bstrSource = ErrorText(error.Source());
  return DISP_E_EXCEPTION;
}

// COM's interfaces have no virtual destructor: an object frees itself, by its full type.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// IDispatch around a target. Counted by COM; frees itself.
class TComTarget final : public IDispatch {
 public:
  TComTarget(std::shared_ptr<TDispatchTarget> target, const TGuid* iid) : fTarget(std::move(target)) {
    if (iid != nullptr) fExtra = std::bit_cast<GUID>(*iid);
  }

  const std::shared_ptr<TDispatchTarget>& Target() const { return fTarget; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == kOwnTarget || iid == fExtra;
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++fReferences; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --fReferences;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* info, UINT* wrongArgument) override {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (wrongArgument == nullptr) return E_POINTER;  // strict: some components write it without asking
    try {
      return Answer(id, flags, *parameters, result);
    } catch (const EError& error) {
      return Fail(info, error);
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    } catch (...) {
      return E_UNEXPECTED;
    }
  }

 private:
  ~TComTarget() = default;

  HRESULT Answer(DISPID id, WORD flags, const DISPPARAMS& parameters, VARIANT* result) {
    const auto kind = KindOf(flags);
    if (!kind) return DISP_E_MEMBERNOTFOUND;
    if (const HRESULT refused = CheckNames(*kind, parameters); FAILED(refused)) return refused;
    const TVariant value = fTarget->Invoke(id, *kind, Arguments(parameters));
    if (result != nullptr) {
      ::VariantInit(result);
      AssignComVariant(*result, value);
    }
    return S_OK;
  }

  std::shared_ptr<TDispatchTarget> fTarget;
  GUID fExtra = kOwnTarget;
  std::atomic<ULONG> fReferences = 1;
};

#pragma GCC diagnostic pop

}  // namespace

TDispatch MakeDispatch(std::shared_ptr<TDispatchTarget> target, const TGuid* iid) {
  return AdoptComObject(new TComTarget(std::move(target), iid));
}

std::shared_ptr<TDispatchTarget> TargetOf(const TDispatch& reference) {
  if (!reference) return nullptr;
  void* found = nullptr;
  if (FAILED(ComObject(reference)->QueryInterface(kOwnTarget, &found))) return nullptr;
  const TDispatch held = AdoptComObject(static_cast<IDispatch*>(found));
  return static_cast<TComTarget*>(ComObject(held))->Target();
}
