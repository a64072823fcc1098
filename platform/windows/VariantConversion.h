#pragma once

#include <windows.h>

#include <oaidl.h>

#include "platform/Variant.h"

/// Owns the contents of one VARIANT.
class TComVariant {
 public:
  TComVariant() noexcept { ::VariantInit(&fVariant); }
  ~TComVariant() { ::VariantClear(&fVariant); }
  TComVariant(const TComVariant&) = delete;
  TComVariant& operator=(const TComVariant&) = delete;

  VARIANT* Get() noexcept { return &fVariant; }

 private:
  VARIANT fVariant;
};

/// A copy of the contents; objects are counted. Types whose value nobody reads keep their tag alone.
TVariant FromComVariant(const VARIANT& variant);

/// Fills an empty VARIANT. Throws std::bad_alloc when there is no room for a text.
void AssignComVariant(VARIANT& target, const TVariant& value);

TextView FromBstr(BSTR text) noexcept;

inline IDispatch* ComObject(const TDispatch& reference) noexcept {
  return reinterpret_cast<IDispatch*>(reference.Get());
}
/// Takes over one reference.
inline TDispatch AdoptComObject(IDispatch* object) noexcept {
  return TDispatch::Adopt(reinterpret_cast<TDispatch::TObject*>(object));
}
