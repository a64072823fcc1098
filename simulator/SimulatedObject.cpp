#include "simulator/SimulatedObject.h"

#include <algorithm>
#include <exception>
#include <nlohmann/json.hpp>
#include <string>

#include "simulator/PropertyValue.h"

namespace {

using TArguments = std::span<const TVariant>;

bool Fits(TParameter parameter, const TVariant& argument) {
  switch (parameter) {
    case TParameter::Text:
      return argument.Type() == TVarType::Text;
    case TParameter::Integer:
      return argument.Type() == TVarType::Int32;
    case TParameter::Value:
      return simulator::CanHold(argument);
    case TParameter::Unknown:
      return argument.Type() == TVarType::Unknown;
  }
  return false;
}

void CheckArguments(const TMember& member, TArguments arguments) {
  if (arguments.size() != member.Parameters.size()) throw simulator::BareFailure(kBadParamCount);
  if (!std::ranges::equal(member.Parameters, arguments, Fits)) throw simulator::BareFailure(kTypeMismatch);
}

// The pieces of a line in the trace; docs/simulator.md describes how they fit together.

/// Keeps a text on its line and one character wide: control characters become their pictures (U+2400 and on).
UnicodeString OneLine(TextView text) {
  UnicodeString line(text);
  for (char16_t& c : line) {
    if (c < 0x20) c = static_cast<char16_t>(0x2400 + c);
  }
  return line;
}

std::string PlainValue(const TVariant& value) {
  if (!value.IsText()) return simulator::JsonFromValue(value).dump();
  std::string quoted = "\"";
  for (const char c : Utf8FromText(OneLine(value.AsText()))) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + "\"";
}

/// What one of our objects is called in the trace; "object" for null and for any other object.
std::string ObjectName(const TVariant& value) {
  const TDispatch& reference = value.AsObject();
  const auto object = std::dynamic_pointer_cast<TSimulatedObject>(TargetOf(reference));
  return object != nullptr ? std::string(object->ClassName()) : "object";
}

/// The type and, if it has one, the value.
std::string TypedValue(const TVariant& value) {
  if (value.Type() == TVarType::Dispatch) return "dispatch " + ObjectName(value);
  if (value.Type() == TVarType::Unknown) return "unknown " + ObjectName(value);
  const std::string name(simulator::TypeName(value.Type()));
  if (name.empty()) return "type " + std::to_string(static_cast<int>(value.Type()));
  return simulator::CanHold(value) ? name + " " + PlainValue(value) : name;
}

/// An argument of the declared type shows its value alone, any other one its type as well.
std::string ArgumentList(const TMember* member, TArguments arguments) {
  std::string list;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool declared = member != nullptr && i < member->Parameters.size() &&
                          member->Parameters[i] != TParameter::Value &&
                          Fits(member->Parameters[i], arguments[i]);
    const bool object = arguments[i].Type() == TVarType::Unknown;
    if (i > 0) list += ", ";
    list += !declared ? TypedValue(arguments[i])
            : object  ? ObjectName(arguments[i])
                      : PlainValue(arguments[i]);
  }
  return list;
}

std::string_view KindName(TInvokeKind kind) {
  return kind == TInvokeKind::Get ? " get" : kind == TInvokeKind::Put ? " put" : " method";
}

/// "OpenDocument("Z:\a\Teil.ipt")", as far as it is known before the call; "0300FFFF get()" for a call that
/// the object has no member for.
std::string CallText(const TMember* member, std::int32_t id, TInvokeKind kind, TArguments arguments) {
  if (member == nullptr) {
    std::string number = Utf8FromText(HexText(static_cast<std::uint32_t>(id)));
    return number.append(KindName(kind)) + "(" + ArgumentList(nullptr, arguments) + ")";
  }
  std::string line(member->Name);
  if (kind == TInvokeKind::Put) return line + " := " + ArgumentList(member, arguments);
  // A plain get reads like a field; everything else like a call.
  if (kind == TInvokeKind::Get && member->Parameters.empty() && arguments.empty()) return line;
  return line + "(" + ArgumentList(member, arguments) + ")";
}

/// " = 5"; empty for objects and for calls without a result.
std::string ResultText(const TMember& member, const TVariant& result) {
  if (member.Kind != TInvokeKind::Get || result.Type() == TVarType::Dispatch) return {};
  return " = " + (member.AnyResult ? TypedValue(result) : PlainValue(result));
}

std::string ErrorText(const EError& error) {
  const bool described = !error.Message().empty();
  return " ! " + Utf8FromText(described ? OneLine(error.Message())
                                        : HexText(static_cast<std::uint32_t>(error.Code())));
}

}  // namespace

TVariant TSimulatedObject::Invoke(std::int32_t id, TInvokeKind kind, TArguments arguments) {
  const TMember* member = Find(id, kind);
  if (!fSimulator.Settings().Trace) return Answer(member, arguments);
  const std::string line = std::string(fClassName) + "." + CallText(member, id, kind, arguments);
  try {
    TVariant result = Answer(member, arguments);
    fSimulator.Trace(line + ResultText(*member, result));
    return result;
  } catch (const EError& error) {
    fSimulator.Trace(line + ErrorText(error));
    throw;
  } catch (const std::exception& error) {
    fSimulator.Trace(line + " ! " + error.what());
    throw;
  }
}

void TSimulatedObject::TraceRelease() noexcept {
  try {
    fSimulator.Trace(std::string(fClassName) + ".Release");
  } catch (const std::exception&) {
    return;  // no memory for the line: releasing an object cannot fail for that
  }
}

const TMember* TSimulatedObject::Find(std::int32_t id, TInvokeKind kind) const {
  const auto members = Members();
  const auto found = std::ranges::find_if(
      members, [id, kind](const TMember& member) { return member.Id == id && member.Kind == kind; });
  return found != members.end() ? &*found : nullptr;
}

TVariant TSimulatedObject::Answer(const TMember* member, TArguments arguments) {
  fSimulator.BeginCall();
  if (member == nullptr) throw simulator::BareFailure(kMemberNotFound);
  CheckArguments(*member, arguments);
  CheckUsable();
  return member->Call(*this, arguments);
}

namespace simulator {

EError Failure(UnicodeString description) {
  return {TErrorKind::Component, kUnspecifiedError, std::move(description), UnicodeString(kSimulatorSource)};
}

EError BareFailure(std::int32_t result) {
  return {TErrorKind::Component, result, {}};
}

UnicodeString Quoted(TextView text) {
  return UnicodeString(u"\"").append(text) + u"\"";
}

}  // namespace simulator
