#include "platform/Variant.h"

#include "platform/Error.h"

const UnicodeString& TVariant::AsText() const {
  if (const auto* text = std::get_if<UnicodeString>(&fValue)) return *text;
  throw ComponentError(kTypeMismatch);
}

std::int32_t TVariant::AsInteger() const {
  const bool integer = fType == TVarType::Int32 || fType == TVarType::Int16;
  if (!integer) throw ComponentError(kTypeMismatch);
  return std::get<std::int32_t>(fValue);
}

double TVariant::AsDouble() const {
  if (const auto* number = std::get_if<double>(&fValue)) return *number;
  throw ComponentError(kTypeMismatch);
}

bool TVariant::AsBoolean() const {
  return AsVariantBool() != 0;
}

std::int16_t TVariant::AsVariantBool() const {
  if (fType != TVarType::Boolean) throw ComponentError(kTypeMismatch);
  return static_cast<std::int16_t>(std::get<std::int32_t>(fValue));
}

const TDispatch& TVariant::AsObject() const {
  if (const auto* object = std::get_if<TDispatch>(&fValue)) return *object;
  throw ComponentError(kTypeMismatch);
}
