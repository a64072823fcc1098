#include "simulator/TraceLine.h"

#include <nlohmann/json.hpp>

#include "simulator/PropertyValue.h"

namespace {

/// Keeps a text on its line and one character wide: control characters become their pictures (U+2400 and on).
UnicodeString OneLine(TextView text) {
  UnicodeString line(text);
  for (char16_t& c : line) {
    if (c < 0x20) c = static_cast<char16_t>(0x2400 + c);
  }
  return line;
}

std::string QuotedText(TextView text) {
  std::string quoted = "\"";
  for (const char c : Utf8FromText(OneLine(text)))
    quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

std::string PlainValue(const TVariant& value) {
  if (value.IsText()) return QuotedText(value.AsText());
  const auto json = simulator::JsonFromValue(value);
  return json.is_string() ? json.get<std::string>() : json.dump();  // a date stands without quotes
}

/// What one of our objects is called in the trace; "object" for null and for what others have made.
std::string ObjectName(const TVariant& value) {
  try {
    const auto object = std::dynamic_pointer_cast<TSimulatedObject>(TargetOf(value.AsObject()));
    if (object != nullptr) return std::string(object->ClassName());
  } catch (const EError&) {
    return "object";  // null: a variant does not tell otherwise
  }
  return "object";
}

/// The type and, where it has one, the value.
std::string TypedValue(const TVariant& value) {
  if (value.Type() == TVarType::Dispatch) return "dispatch " + ObjectName(value);
  if (value.Type() == TVarType::Unknown) return "unknown " + ObjectName(value);
  std::string name(simulator::TypeName(value.Type()));
  if (name.empty()) return "type " + std::to_string(static_cast<int>(value.Type()));
  if (value.Type() == TVarType::Empty || value.Type() == TVarType::Null) return name;
  // A date that no calendar has, or a number that is none, shows its type alone.
  return simulator::CanHold(value) ? name + " " + PlainValue(value) : name;
}

/// An argument that has the declared type shows its value alone, any other one its type as well.
std::string Argument(const TMember* member, std::size_t index, const TVariant& value) {
  if (member != nullptr && index < member->Parameters.size()) {
    const TParameter declared = member->Parameters[index];
    const bool text = declared == TParameter::Text && value.Type() == TVarType::Text;
    const bool integer = declared == TParameter::Integer && value.Type() == TVarType::Int32;
    if (text || integer) return PlainValue(value);
    if (declared == TParameter::Unknown && value.Type() == TVarType::Unknown) return ObjectName(value);
  }
  return TypedValue(value);
}

std::string ArgumentList(const TMember* member, std::span<const TVariant> arguments) {
  std::string list;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) list += ", ";
    list += Argument(member, i, arguments[i]);
  }
  return list;
}

std::string_view KindName(TInvokeKind kind) {
  switch (kind) {
    case TInvokeKind::Get:
      return " get";
    case TInvokeKind::Put:
      return " put";
    case TInvokeKind::Method:
      break;
  }
  return " method";
}

}  // namespace

namespace simulator {

std::string TraceCall(std::string_view className, const TMember& member,
                      std::span<const TVariant> arguments) {
  std::string line(className);
  line += '.';
  line += member.Name;
  if (member.Kind == TInvokeKind::Put) return line + " := " + ArgumentList(&member, arguments);
  // A plain get reads like a field; everything else like a call.
  if (member.Kind == TInvokeKind::Get && member.Parameters.empty() && arguments.empty()) return line;
  return line + "(" + ArgumentList(&member, arguments) + ")";
}

std::string TraceUnknownCall(std::string_view className, std::int32_t id, TInvokeKind kind,
                             std::span<const TVariant> arguments) {
  std::string line(className);
  line += '.';
  line += Utf8FromText(HexText(static_cast<std::uint32_t>(id)));
  line += KindName(kind);
  return line + "(" + ArgumentList(nullptr, arguments) + ")";
}

std::string TraceResult(const TMember& member, const TVariant& result) {
  if (member.Kind != TInvokeKind::Get || result.Type() == TVarType::Dispatch) return {};
  return " = " + (member.Result == TResult::Typed ? TypedValue(result) : PlainValue(result));
}

std::string TraceError(const EError& error) {
  const bool described = !error.Message().empty();
  return " ! " + Utf8FromText(described ? OneLine(error.Message())
                                        : HexText(static_cast<std::uint32_t>(error.Code())));
}

}  // namespace simulator
