#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/Dispatch.h"
#include "platform/Variant.h"

/// An automation object that lives in this process: the other side of TDispatch. The simulator implements it;
/// the program itself has none.
class TDispatchTarget {
 public:
  virtual ~TDispatchTarget() = default;

  /// Answers one call; `arguments` stand in the order of declaration. Throws EError of kind Component: with a
  /// message it reaches the caller as the object's description, without one as the bare HRESULT.
  virtual TVariant Invoke(std::int32_t id, TInvokeKind kind, std::span<const TVariant> arguments) = 0;
};

/// A reference to `target`. It answers the query for IDispatch and, where given, for `iid`.
TDispatch MakeDispatch(std::shared_ptr<TDispatchTarget> target, const TGuid* iid = nullptr);

/// The target behind a reference that MakeDispatch made, or null for any other object.
std::shared_ptr<TDispatchTarget> TargetOf(const TDispatch& reference);
