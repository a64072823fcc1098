#include "platform/windows/VariantConversion.h"

#include <oleauto.h>

#include <new>

#include "platform/windows/Wide.h"

namespace {

/// Another reference to the object behind `object`; empty when it is none that can be automated.
TDispatch Referenced(IUnknown* object) {
  IDispatch* automated = nullptr;
  if (object != nullptr) object->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&automated));
  return AdoptComObject(automated);
}

IDispatch* Counted(const TDispatch& reference) {
  IDispatch* object = ComObject(reference);
  if (object != nullptr) object->AddRef();
  return object;
}

/// Owned by the caller. Throws std::bad_alloc.
BSTR MakeBstr(TextView text) {
  const BSTR copy = ::SysAllocStringLen(Wide(text.data()), static_cast<UINT>(text.size()));
  if (copy == nullptr) throw std::bad_alloc();
  return copy;
}

}  // namespace

TextView FromBstr(BSTR text) noexcept {
  return FromWide(text, ::SysStringLen(text));
}

TVariant FromComVariant(const VARIANT& variant) {
  switch (variant.vt) {
    case VT_EMPTY:
      return {};
    case VT_I2:
      return TVariant::Int16(variant.iVal);
    case VT_I4:
      return TVariant::Int32(variant.lVal);
    case VT_R4:
      return TVariant::Single(variant.fltVal);
    case VT_R8:
      return TVariant::Double(variant.dblVal);
    case VT_DATE:
      return TVariant::Date(variant.date);
    case VT_BSTR:
      return TVariant::Text(UnicodeString(FromBstr(variant.bstrVal)));
    case VT_BOOL:
      return TVariant::Boolean(variant.boolVal);
    case VT_DISPATCH:
      return TVariant::Object(Referenced(variant.pdispVal));
    case VT_UNKNOWN:
      return TVariant::Unknown(Referenced(variant.punkVal));
    default:
      return TVariant::Tagged(static_cast<TVarType>(variant.vt));
  }
}

void AssignComVariant(VARIANT& target, const TVariant& value) {
  switch (value.Type()) {
    case TVarType::Int16:
      target.iVal = static_cast<SHORT>(value.AsInteger());
      break;
    case TVarType::Int32:
      target.lVal = value.AsInteger();
      break;
    case TVarType::Single:
      target.fltVal = static_cast<FLOAT>(value.AsDouble());
      break;
    case TVarType::Double:
      target.dblVal = value.AsDouble();
      break;
    case TVarType::Date:
      target.date = value.AsDouble();
      break;
    case TVarType::Text:
      target.bstrVal = MakeBstr(value.AsText());
      break;
    case TVarType::Boolean:
      target.boolVal = value.AsVariantBool();
      break;
    case TVarType::Dispatch:
      target.pdispVal = Counted(value.AsObject());
      break;
    case TVarType::Unknown:
      target.punkVal = Counted(value.AsObject());
      break;
    case TVarType::Empty:
    case TVarType::Null:
      break;
  }
  target.vt = static_cast<VARTYPE>(value.Type());
}
