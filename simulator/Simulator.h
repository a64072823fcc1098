#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Dispatch.h"
#include "platform/Error.h"
#include "platform/Text.h"
#include "simulator/DocumentFile.h"

/// The interface that a client asks of a new server.
constexpr TGuid kSimulatedServerInterface{
    0xC343ED82, 0xA129, 0x11D3, {0xB7, 0x99, 0x00, 0x60, 0xB0, 0xF1, 0x59, 0xEF}};

/// What the simulator names as the source of its errors.
constexpr TextView kSimulatorSource = u"Apprentice-Simulator";

/// The code of errors that have no other: "unspecified error" (winerror.h).
constexpr std::int32_t kUnspecifiedError = HResult(0x80004005);

/// Where documents are kept. Both functions throw EError with the reason alone; its message becomes part of
/// the simulator's.
struct TFileAccess {
  std::function<std::string(const UnicodeString& path)> Load;
  /// All or nothing: after a failure the file is what it was before.
  std::function<void(const UnicodeString& path, const std::string& bytes)> Store;
};

struct TSimulatorSettings {
  /// Takes one line of UTF-8 without its line break before the call that it describes returns. Empty: calls
  /// are not traced.
  std::function<void(std::string_view line)> Trace;

  std::int64_t FailCall = 0;  ///< the call that fails, counted from 1 over all objects; 0: none
  UnicodeString FailText;     ///< its description; without one it fails with the bare FailResult
  std::int32_t FailResult = kUnspecifiedError;

  int DelayMilliseconds = 0;  ///< before OpenDocument begins
  std::function<void(int milliseconds)> Sleep;

  // These override the switches of the documents.
  std::optional<TPastEnd> PastEnd;
  std::optional<TDuplicateProperty> DuplicateProperty;
};

/// The world that all objects of one simulated component share: files, settings, the count of calls and of
/// living objects. It must outlive the objects. For one thread.
class TSimulator {
 public:
  TSimulator(TFileAccess files, TSimulatorSettings settings);
  TSimulator(const TSimulator&) = delete;
  TSimulator& operator=(const TSimulator&) = delete;

  /// A new server, the root of all other objects.
  TDispatch CreateServer();

  /// Calls so far, on all objects; creating and releasing are none.
  std::int64_t Calls() const noexcept { return fCalls; }
  int LiveObjects() const noexcept { return fLiveObjects; }

  // For the objects themselves:
  const TFileAccess& Files() const noexcept { return fFiles; }
  const TSimulatorSettings& Settings() const noexcept { return fSettings; }
  /// Counts a call and throws if it is the one that is to fail.
  void BeginCall();
  /// A line that cannot be written is lost: no call fails for that.
  void Trace(std::string_view line) noexcept;
  void DelayOpening() const;

 private:
  friend class TLiveObject;

  TFileAccess fFiles;
  TSimulatorSettings fSettings;
  std::int64_t fCalls = 0;
  int fLiveObjects = 0;
};

/// One living object in the simulator's count.
class TLiveObject {
 public:
  explicit TLiveObject(TSimulator& simulator) noexcept : fSimulator(simulator) { ++fSimulator.fLiveObjects; }
  ~TLiveObject() { --fSimulator.fLiveObjects; }
  TLiveObject(const TLiveObject&) = delete;
  TLiveObject& operator=(const TLiveObject&) = delete;

 private:
  TSimulator& fSimulator;
};
