#include <windows.h>

#include <objbase.h>
#include <olectl.h>
#include <unknwn.h>

#include <memory>
#include <new>
#include <string>

#include "platform/System.h"
#include "platform/windows/VariantConversion.h"
#include "platform/windows/Wide.h"
#include "simulator/com/Registration.h"
#include "simulator/com/World.h"

namespace {

constexpr CLSID kServerClass{0xC343ED84, 0xA129, 0x11D3, {0xB7, 0x99, 0x00, 0x60, 0xB0, 0xF1, 0x59, 0xEF}};

/// What lives as long as the DLL is loaded.
struct TModule {
  HINSTANCE Instance = nullptr;
  LONG Locks = 0;
  std::unique_ptr<TSimulator> Simulator;  ///< from the first server on

  /// Throws EError when the environment asks for something that cannot be had.
  TSimulator& World() {
    if (!Simulator) Simulator = simulator::NewWorld();
    return *Simulator;
  }
  bool InUse() const { return Locks > 0 || (Simulator && Simulator->LiveObjects() > 0); }
};

TModule& Module() {
  // Never destroyed: a client that does not release its objects in time finds them intact until the process
  // ends.
  static auto* module = new TModule;
  return *module;
}

/// Runs `body`, which returns an HRESULT, and keeps its exceptions away from COM's frames.
template <class TBody>
HRESULT Guarded(TBody body) noexcept {
  try {
    return body();
  } catch (const EError& error) {
    return error.Code() < 0 ? error.Code() : HRESULT_FROM_WIN32(static_cast<DWORD>(error.Code()));
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

HRESULT CreateServer(REFIID iid, void** object) {
  const TDispatch server = Module().World().CreateServer();
  return ComObject(server)->QueryInterface(iid, object);
}

// COM's interfaces have no virtual destructor; nobody destroys this object through one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The one class factory: part of the DLL, so its references count nothing.
class TServerFactory final : public IClassFactory {
 public:
  static TServerFactory& Instance() {
    static TServerFactory factory;
    return factory;
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return Guarded([&] { return CreateServer(iid, object); });
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    Module().Locks += lock ? 1 : -1;
    return S_OK;
  }

 private:
  ~TServerFactory() = default;
};

#pragma GCC diagnostic pop

/// The last line of the trace. `unloaded`: the process lives on, and what it lent us goes back.
void EndWorld(bool unloaded) {
  const auto& world = Module().Simulator;
  if (!world) return;
  try {
    world->Trace("alive " + std::to_string(world->LiveObjects()));
  } catch (const std::bad_alloc&) {  // the line is lost; an exception must not leave DllMain
  }
  if (unloaded && !Module().InUse()) Module().Simulator.reset();
}

UnicodeString DllPath() {
  UnicodeString path(32768, u'\0');
  path.resize(::GetModuleFileNameW(Module().Instance, WideBuffer(path), static_cast<DWORD>(path.size())));
  return path;
}

HRESULT SetRegistered(bool registered, HKEY scope) {
  return Guarded([=] {
    return registered ? simulator::Register(scope, DllPath()) : simulator::Unregister(scope, DllPath());
  });
}

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) {
    Module().Instance = instance;
    ::DisableThreadLibraryCalls(instance);
  }
  if (reason == DLL_PROCESS_DETACH) EndWorld(processEnds == nullptr);
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return clsid == kServerClass ? TServerFactory::Instance().QueryInterface(iid, object)
                               : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() {
  return Module().InUse() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
  return SetRegistered(true, HKEY_LOCAL_MACHINE);
}

STDAPI DllUnregisterServer() {
  return SetRegistered(false, HKEY_LOCAL_MACHINE);
}

STDAPI DllInstall(BOOL install, PCWSTR scope) {
  const bool user = scope != nullptr && SameText(FromWide(scope), u"user");
  return user ? SetRegistered(install != FALSE, HKEY_CURRENT_USER) : E_INVALIDARG;
}
}
