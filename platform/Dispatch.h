#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <utility>

class TVariant;

/// A class or interface identifier in the layout of COM's GUID.
struct TGuid {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::array<std::uint8_t, 8> Data4;

  bool operator==(const TGuid&) const = default;
};

enum class TInvokeKind { Method, Get, Put };

/// One counted reference to an automation object. Copies share the object; the last one to go releases it.
/// The object's members are reached by dispatch identifier only.
class TDispatch {
 public:
  struct TObject;  // the system's IDispatch, or the headless back end's stand-in

  TDispatch() noexcept = default;
  TDispatch(const TDispatch& other) noexcept : fObject(other.fObject) { AddReference(fObject); }
  TDispatch(TDispatch&& other) noexcept : fObject(std::exchange(other.fObject, nullptr)) {}
  TDispatch& operator=(TDispatch other) noexcept {
    std::swap(fObject, other.fObject);
    return *this;
  }
  ~TDispatch() { ReleaseReference(fObject); }

  /// Takes over one reference that the caller holds.
  static TDispatch Adopt(TObject* object) noexcept;
  /// The object itself; it stays owned by this reference.
  TObject* Get() const noexcept { return fObject; }
  explicit operator bool() const noexcept { return fObject != nullptr; }

  /// Calls the member `id`; `arguments` stand in the order of the member's declaration. The result is Empty
  /// for a member without one. A call that an object in another process rejects because it is busy is
  /// repeated for up to ten seconds. Throws EError of kind Component: with the object's own description if it
  /// gives one, else with the system's text for the HRESULT. An empty reference answers with a type mismatch.
  TVariant Invoke(std::int32_t id, TInvokeKind kind, std::span<const TVariant> arguments = {}) const;

 private:
  static void AddReference(TObject* object) noexcept;
  static void ReleaseReference(TObject* object) noexcept;

  TObject* fObject = nullptr;
};

/// COM for the calling thread (single-threaded apartment), for as long as this lives. A refusal is not
/// reported here: the first CreateInstance fails then.
class TComApartment {
 public:
  TComApartment() noexcept;
  ~TComApartment();  // NOLINT(performance-trivially-destructible): what it does is the back end's to say
  TComApartment(const TComApartment&) = delete;
  TComApartment& operator=(const TComApartment&) = delete;

 private:
  [[maybe_unused]] bool fInitialized = false;
};

/// Creates the class `clsid`, in this process or in a local server, and asks the new object for `iid`, an
/// interface that derives from IDispatch. Repeats what a busy server rejects, as Invoke does. Throws EError
/// of kind Component if either is refused.
TDispatch CreateInstance(const TGuid& clsid, const TGuid& iid);
