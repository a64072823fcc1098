#include "simulator/SimulatedObject.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>

#include "simulator/PropertyValue.h"
#include "simulator/TraceLine.h"

namespace {

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

void CheckArguments(const TMember& member, std::span<const TVariant> arguments) {
  if (arguments.size() != member.Parameters.size()) throw simulator::BareFailure(kBadParamCount);
  if (!std::ranges::equal(member.Parameters, arguments, Fits)) throw simulator::BareFailure(kTypeMismatch);
}

}  // namespace

TVariant TSimulatedObject::Invoke(std::int32_t id, TInvokeKind kind, std::span<const TVariant> arguments) {
  const TMember* member = Find(id, kind);
  std::string line = member != nullptr ? simulator::TraceCall(fClassName, *member, arguments)
                                       : simulator::TraceUnknownCall(fClassName, id, kind, arguments);
  try {
    TVariant result = Answer(member, arguments);
    fSimulator.Trace(line + simulator::TraceResult(*member, result));
    return result;
  } catch (const EError& error) {
    fSimulator.Trace(line + simulator::TraceError(error));
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
    return;  // no room for the line: an object's end cannot fail for that
  }
}

const TMember* TSimulatedObject::Find(std::int32_t id, TInvokeKind kind) const {
  const auto members = Members();
  const auto found = std::ranges::find_if(
      members, [id, kind](const TMember& member) { return member.Id == id && member.Kind == kind; });
  return found != members.end() ? &*found : nullptr;
}

TVariant TSimulatedObject::Answer(const TMember* member, std::span<const TVariant> arguments) {
  fSimulator.BeginCall();
  if (member == nullptr) throw simulator::BareFailure(kMemberNotFound);
  CheckArguments(*member, arguments);
  CheckUsable();
  return member->Handler(*this, arguments);
}

namespace simulator {

EError Failure(UnicodeString description) {
  return {TErrorKind::Component, kUnspecifiedError, std::move(description), UnicodeString(kSimulatorSource)};
}

EError BareFailure(std::int32_t result) {
  return {TErrorKind::Component, result, {}};
}

UnicodeString Quoted(TextView text) {
  UnicodeString quoted = u"\"";
  quoted += text;
  return quoted + u"\"";
}

}  // namespace simulator
