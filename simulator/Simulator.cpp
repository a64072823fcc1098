#include "simulator/Simulator.h"

#include <exception>
#include <utility>

#include "simulator/ServerObjects.h"

TSimulator::TSimulator(TFileAccess files, TSimulatorSettings settings)
    : fFiles(std::move(files)), fSettings(std::move(settings)) {}

TDispatch TSimulator::CreateServer() {
  const auto server = NewServer(*this);
  Trace("server.Create");
  return MakeDispatch(server, &kSimulatedServerInterface);
}

void TSimulator::BeginCall() {
  if (++fCalls != fSettings.FailCall) return;
  throw EError(TErrorKind::Component, fSettings.FailResult, fSettings.FailText,
               fSettings.FailText.empty() ? UnicodeString() : UnicodeString(kSimulatorSource));
}

void TSimulator::Trace(std::string_view line) noexcept {
  try {
    if (fSettings.Trace) fSettings.Trace(line);
  } catch (const std::exception&) {
    return;
  }
}

void TSimulator::DelayOpening() const {
  if (fSettings.DelayMilliseconds > 0 && fSettings.Sleep) fSettings.Sleep(fSettings.DelayMilliseconds);
}
