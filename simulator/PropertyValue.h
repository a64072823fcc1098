#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string_view>

#include "platform/Variant.h"

namespace simulator {

/// The name under which documents and the trace quote a type; empty for a type that has none.
std::string_view TypeName(TVarType type);

/// Whether a property takes `value` from a caller: texts, whole numbers, finite reals, Booleans and dates.
bool CanHold(const TVariant& value);

/// A value as a document writes it. Types without a name become null.
nlohmann::ordered_json JsonFromValue(const TVariant& value);
/// Throws EError, with a message about the value alone, for an unknown type or a value that does not fit it.
TVariant ValueFromJson(std::string_view type, const nlohmann::ordered_json& json);

/// A VARIANT_BOOL: true, false or the number itself. Throws EError for anything else.
std::int16_t VariantBoolFromJson(const nlohmann::ordered_json& json);
nlohmann::ordered_json JsonFromVariantBool(std::int16_t value);

}  // namespace simulator
