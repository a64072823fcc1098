#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/Error.h"
#include "platform/Variant.h"
#include "simulator/SimulatedObject.h"

// The pieces of a line in the trace; docs/simulator.md describes how they fit together.

namespace simulator {

/// "server.OpenDocument("Z:\a\Teil.ipt")", as far as it is known before the call.
std::string TraceCall(std::string_view className, const TMember& member, std::span<const TVariant> arguments);
/// "server.0300FFFF get()": a call for which the object has no member.
std::string TraceUnknownCall(std::string_view className, std::int32_t id, TInvokeKind kind,
                             std::span<const TVariant> arguments);
/// " = 5"; empty for objects and for calls without a result.
std::string TraceResult(const TMember& member, const TVariant& result);
std::string TraceError(const EError& error);

}  // namespace simulator
