#include "simulator/PropertyValue.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "platform/Error.h"

using TJson = nlohmann::ordered_json;

namespace {

struct TNamedType {
  TVarType Type;
  std::string_view Name;
};

constexpr std::array<TNamedType, 9> kTypes{{
    {TVarType::Empty, "empty"},
    {TVarType::Null, "null"},
    {TVarType::Int16, "int16"},
    {TVarType::Int32, "integer"},
    {TVarType::Single, "single"},
    {TVarType::Double, "real"},
    {TVarType::Date, "date"},
    {TVarType::Text, "text"},
    {TVarType::Boolean, "boolean"},
}};

[[noreturn]] void Refuse(const std::string& what, const TJson& json) {
  throw EError(TErrorKind::InputOutput, 0, TextFromUtf8(what + ": " + json.dump()));
}

template <class T>
T WholeNumber(const TJson& json) {
  if (!json.is_number_integer()) Refuse("Ganze Zahl erwartet", json);
  // Through double: exact for every number that can be in range, and no number beyond wraps around.
  const auto value = json.get<double>();
  if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) {
    Refuse("Zahl außerhalb des Bereichs", json);
  }
  return json.get<T>();
}

double Real(const TJson& json) {
  if (!json.is_number()) Refuse("Zahl erwartet", json);
  return json.get<double>();
}

float Single(const TJson& json) {
  // Rounded first: the fewest digits of the largest single are those of a number a little above it.
  const auto value = static_cast<float>(Real(json));
  if (!std::isfinite(value)) Refuse("Zahl außerhalb des Bereichs", json);
  return value;
}

UnicodeString TextOf(const TJson& json) {
  if (!json.is_string()) Refuse("Text erwartet", json);
  return TextFromUtf8(json.get<std::string>());
}

/// The double with the fewest digits that reads back as `value`: 0.1 and not 0.10000000149011612.
double FewestDigits(float value) {
  std::array<char, 32> text{};
  const char* end = std::to_chars(text.begin(), text.end(), value).ptr;
  double shortest = 0;
  std::from_chars(text.data(), end, shortest);
  return shortest;
}

}  // namespace

namespace simulator {

std::string_view TypeName(TVarType type) {
  for (const TNamedType& named : kTypes) {
    if (named.Type == type) return named.Name;
  }
  return {};
}

bool CanHold(const TVariant& value) {
  switch (value.Type()) {
    case TVarType::Text:
    case TVarType::Int16:
    case TVarType::Int32:
    case TVarType::Boolean:
      return true;
    case TVarType::Single:
    case TVarType::Double:
    case TVarType::Date:
      return std::isfinite(value.AsDouble());
    default:
      return false;
  }
}

TJson JsonFromValue(const TVariant& value) {
  switch (value.Type()) {
    case TVarType::Text:
      return Utf8FromText(value.AsText());
    case TVarType::Int16:
    case TVarType::Int32:
      return value.AsInteger();
    case TVarType::Single:
      return FewestDigits(static_cast<float>(value.AsDouble()));
    case TVarType::Double:
    case TVarType::Date:
      return value.AsDouble();
    case TVarType::Boolean:
      return JsonFromVariantBool(value.AsVariantBool());
    default:
      return nullptr;
  }
}

TVariant ValueFromJson(std::string_view type, const TJson& json) {
  if (type == "text") return TVariant::Text(TextOf(json));
  if (type == "int16") return TVariant::Int16(WholeNumber<std::int16_t>(json));
  if (type == "integer") return TVariant::Int32(WholeNumber<std::int32_t>(json));
  if (type == "single") return TVariant::Single(Single(json));
  if (type == "real") return TVariant::Double(Real(json));
  if (type == "date") return TVariant::Date(Real(json));
  if (type == "boolean") return TVariant::Boolean(VariantBoolFromJson(json));
  if (type != "empty" && type != "null") Refuse("Unbekannter Typ", std::string(type));
  if (!json.is_null()) Refuse("Kein Wert erwartet", json);
  return type == "empty" ? TVariant() : TVariant::Tagged(TVarType::Null);
}

std::int16_t VariantBoolFromJson(const TJson& json) {
  if (json.is_boolean()) return static_cast<std::int16_t>(json.get<bool>() ? -1 : 0);
  return WholeNumber<std::int16_t>(json);
}

TJson JsonFromVariantBool(std::int16_t value) {
  if (value == 0 || value == -1) return value != 0;
  return value;
}

}  // namespace simulator
