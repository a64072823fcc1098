#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/DispatchTarget.h"
#include "simulator/Simulator.h"

class TSimulatedObject;

enum class TParameter { Text, Integer, Value, Unknown };

enum class TResult { Plain, Typed };

/// One member of an object's interface.
struct TMember {
  using THandler = TVariant (*)(TSimulatedObject& object, std::span<const TVariant> arguments);

  std::int32_t Id;
  TInvokeKind Kind;
  std::string_view Name;
  std::span<const TParameter> Parameters;
  THandler Handler;
  TResult Result = TResult::Plain;  ///< Typed: the result may have any type, and the trace names it
};

/// The common half of all objects: looks the member up, checks the arguments, counts, traces and fails on
/// request. An object adds its table of members and what they do.
class TSimulatedObject : public TDispatchTarget {
 public:
  TVariant Invoke(std::int32_t id, TInvokeKind kind, std::span<const TVariant> arguments) final;

  /// What the object is called in the trace.
  std::string_view ClassName() const noexcept { return fClassName; }

 protected:
  TSimulatedObject(TSimulator& simulator, std::string_view className)
      : fSimulator(simulator), fClassName(className), fAlive(simulator) {}

  virtual std::span<const TMember> Members() const = 0;
  /// Throws when the object can no longer be used.
  virtual void CheckUsable() const {}

  TSimulator& Simulator() const noexcept { return fSimulator; }
  /// For the two objects whose end shows in the trace, as their destructors' first step.
  void TraceRelease() noexcept;

 private:
  const TMember* Find(std::int32_t id, TInvokeKind kind) const;
  TVariant Answer(const TMember* member, std::span<const TVariant> arguments);

  TSimulator& fSimulator;
  std::string_view fClassName;
  TLiveObject fAlive;
};

namespace simulator {

template <class T>
T& ObjectOf(TVariant (T::*)(std::span<const TVariant>), TSimulatedObject& object) {
  return static_cast<T&>(object);
}

/// A member function as the handler of a table entry.
template <auto Function>
TVariant Handle(TSimulatedObject& object, std::span<const TVariant> arguments) {
  return (ObjectOf(Function, object).*Function)(arguments);
}

/// A failure that the object describes.
EError Failure(UnicodeString description);
/// A failure that is a bare HRESULT.
EError BareFailure(std::int32_t result);

/// `text` between double quotes, as the messages show names.
UnicodeString Quoted(TextView text);

}  // namespace simulator
