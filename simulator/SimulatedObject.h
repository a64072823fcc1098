#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include "platform/DispatchTarget.h"
#include "platform/Variant.h"
#include "simulator/Simulator.h"

class TSimulatedObject;

enum class TParameter { Text, Integer, Value, Unknown };

/// One member of an object's interface, as simulator::Member makes it of a member function.
struct TMember {
  std::int32_t Id;
  TInvokeKind Kind;
  std::string_view Name;
  std::span<const TParameter> Parameters;
  bool AnyResult;  ///< the result's type is not fixed; the trace names it
  TVariant (*Call)(TSimulatedObject& object, std::span<const TVariant> arguments);
};

/// The common half of all objects: looks the member up, checks the arguments, counts, traces and fails on
/// request. An object adds its members and the table of them.
class TSimulatedObject : public TDispatchTarget {
 public:
  TVariant Invoke(std::int32_t id, TInvokeKind kind, std::span<const TVariant> arguments) final;

  /// What the object is called in the trace.
  std::string_view ClassName() const noexcept { return fClassName; }

 protected:
  TSimulatedObject(TSimulator& simulator, std::string_view className)
      : fSimulator(simulator), fClassName(className), fAlive(simulator) {}

  virtual std::span<const TMember> Members() const = 0;
  /// Throws if the object can no longer be used.
  virtual void CheckUsable() const {}

  TSimulator& Simulator() const noexcept { return fSimulator; }
  /// For the two objects whose end the trace shows, as the first step of their destructors.
  void TraceRelease() noexcept;

 private:
  const TMember* Find(std::int32_t id, TInvokeKind kind) const;
  TVariant Answer(const TMember* member, std::span<const TVariant> arguments);

  TSimulator& fSimulator;
  std::string_view fClassName;
  TLiveObject fAlive;
};

namespace simulator {

/// A failure that the object describes.
EError Failure(UnicodeString description);
/// A failure that is a bare HRESULT.
EError BareFailure(std::int32_t result);

/// `text` between double quotes, as the messages show names.
UnicodeString Quoted(TextView text);

// What a member function takes and returns decides what its callers must pass and what they get:
// UnicodeString is a text, std::int32_t an integer, TVariant a value of any type, TDispatch an IUnknown.

constexpr TParameter ParameterFor(const UnicodeString*) {
  return TParameter::Text;
}
constexpr TParameter ParameterFor(const std::int32_t*) {
  return TParameter::Integer;
}
constexpr TParameter ParameterFor(const TVariant*) {
  return TParameter::Value;
}
constexpr TParameter ParameterFor(const TDispatch*) {
  return TParameter::Unknown;
}

/// An argument that has passed the check, as the function takes it.
template <class T>
decltype(auto) Unpacked(const TVariant& argument) {
  if constexpr (std::is_same_v<T, UnicodeString>) return argument.AsText();
  if constexpr (std::is_same_v<T, std::int32_t>) return argument.AsInteger();
  if constexpr (std::is_same_v<T, TVariant>) return (argument);
  if constexpr (std::is_same_v<T, TDispatch>) return argument.AsObject();
}

inline TVariant Packed(UnicodeString text) {
  return TVariant::Text(std::move(text));
}
/// A collection's count.
inline TVariant Packed(std::size_t count) {
  return TVariant::Int32(static_cast<std::int32_t>(count));
}
/// A VARIANT_BOOL.
inline TVariant Packed(std::int16_t flag) {
  return TVariant::Boolean(flag);
}
inline TVariant Packed(TVariant value) {
  return value;
}
inline TVariant Packed(std::shared_ptr<TDispatchTarget> object) {
  return TVariant::Object(MakeDispatch(std::move(object)));
}

template <auto Function>
struct TMemberFunction;

template <class TObject, class TResult, class... TParameters, TResult (TObject::*Function)(TParameters...)>
struct TMemberFunction<Function> {
  static constexpr std::array<TParameter, sizeof...(TParameters)> kParameters{
      ParameterFor(static_cast<const std::remove_cvref_t<TParameters>*>(nullptr))...};
  static constexpr bool kAnyResult = std::is_same_v<TResult, TVariant>;

  static TVariant Call(TSimulatedObject& object, std::span<const TVariant> arguments) {
    return Spread(static_cast<TObject&>(object), arguments, std::index_sequence_for<TParameters...>());
  }

 private:
  template <std::size_t... kIndex>
  static TVariant Spread(TObject& object, [[maybe_unused]] std::span<const TVariant> arguments,
                         std::index_sequence<kIndex...>) {
    const auto call = [&] {
      return (object.*Function)(Unpacked<std::remove_cvref_t<TParameters>>(arguments[kIndex])...);
    };
    if constexpr (std::is_void_v<TResult>) {
      call();
      return {};
    } else {
      return Packed(call());
    }
  }
};

/// The entry of a member function in its object's table.
template <auto Function>
constexpr TMember Member(std::int32_t id, TInvokeKind kind, std::string_view name) {
  using TTraits = TMemberFunction<Function>;
  return {id, kind, name, TTraits::kParameters, TTraits::kAnyResult, &TTraits::Call};
}

}  // namespace simulator
