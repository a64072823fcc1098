#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "platform/Dispatch.h"
#include "platform/Text.h"

/// COM's type tags (VARTYPE). Any other 16-bit tag may occur in a variant too: it is kept, its value is not.
enum class TVarType : std::uint16_t {
  Empty = 0,
  Null = 1,
  Int16 = 2,
  Int32 = 3,
  Single = 4,
  Double = 5,
  Date = 7,
  Text = 8,
  Dispatch = 9,
  Boolean = 11,
  Unknown = 13,
};

/// A value as it crosses to the component and back. It keeps the type tag exactly: a text is a value with the
/// tag VT_BSTR and nothing else. Reading it as another type than it holds throws EError (type mismatch).
class TVariant {
 public:
  TVariant() = default;
  static TVariant Text(UnicodeString value) { return {TVarType::Text, std::move(value)}; }
  static TVariant Int16(std::int16_t value) { return {TVarType::Int16, std::int32_t{value}}; }
  static TVariant Int32(std::int32_t value) { return {TVarType::Int32, value}; }
  static TVariant Single(float value) { return {TVarType::Single, double{value}}; }
  static TVariant Double(double value) { return {TVarType::Double, value}; }
  /// Days since 30 December 1899, the time of day as the fraction.
  static TVariant Date(double value) { return {TVarType::Date, value}; }
  /// `value` is a VARIANT_BOOL: any non-zero 16-bit value is true, -1 is the usual one.
  static TVariant Boolean(std::int16_t value) { return {TVarType::Boolean, std::int32_t{value}}; }
  static TVariant Object(TDispatch value) { return {TVarType::Dispatch, std::move(value)}; }
  /// The same object, passed as IUnknown.
  static TVariant Unknown(TDispatch value) { return {TVarType::Unknown, std::move(value)}; }
  /// A tag alone: for null and for types whose value nobody here reads.
  static TVariant Tagged(TVarType type) { return {type, std::monostate{}}; }

  TVarType Type() const noexcept { return fType; }
  bool IsText() const noexcept { return fType == TVarType::Text; }

  const UnicodeString& AsText() const;
  std::int32_t AsInteger() const;      ///< Int16 and Int32
  double AsDouble() const;             ///< Single, Double and Date
  bool AsBoolean() const;              ///< Boolean: anything but zero
  std::int16_t AsVariantBool() const;  ///< Boolean, as it was given
  const TDispatch& AsObject() const;   ///< Dispatch and Unknown; may be null

 private:
  using TValue = std::variant<std::monostate, std::int32_t, double, UnicodeString, TDispatch>;
  TVariant(TVarType type, TValue value) : fType(type), fValue(std::move(value)) {}

  TVarType fType = TVarType::Empty;
  TValue fValue;
};
