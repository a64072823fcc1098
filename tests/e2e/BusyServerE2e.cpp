#include <oaidl.h>
#include <objbase.h>

#include <bit>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/windows/VariantConversion.h"
#include "simulator/Simulator.h"
#include "tests/e2e/Support.h"

// The component as a program of its own, which rejects calls while it is busy: here it is the test's process.

namespace {

constexpr CLSID kServerClass{0xC343ED84, 0xA129, 0x11D3, {0xB7, 0x99, 0x00, 0x60, 0xB0, 0xF1, 0x59, 0xEF}};
constexpr GUID kLibrary{0x6E0D2B51, 0x3C8F, 0x4A97, {0xB1, 0x64, 0x5A, 0x0E, 0x9D, 0x27, 0xC3, 0x48}};

/// COM takes the component from the simulator's DLL where this is registered.
class TUnregisteredSimulator {
 public:
  TUnregisteredSimulator() { EXPECT_EQ(Call("DllUnregisterServer"), S_OK); }
  ~TUnregisteredSimulator() { EXPECT_EQ(Call("DllRegisterServer"), S_OK); }
  TUnregisteredSimulator(const TUnregisteredSimulator&) = delete;
  TUnregisteredSimulator& operator=(const TUnregisteredSimulator&) = delete;

 private:
  HRESULT Call(const char* name) const {
    using TEntry = HRESULT(STDAPICALLTYPE*)();
    const auto entry = reinterpret_cast<TEntry>(reinterpret_cast<void*>(::GetProcAddress(fDll, name)));
    return entry != nullptr ? entry() : E_NOTIMPL;
  }

  HMODULE fDll = ::LoadLibraryW(BuiltPath(L"ApprenticeSimulator.dll").c_str());
};

/// Lets COM carry the server's interface between processes: a type library says that it is IDispatch under
/// another name.
class TInterfaceLibrary {
 public:
  explicit TInterfaceLibrary(const std::wstring& path) {
    TComReference<ITypeLib> automation;
    TComReference<ITypeInfo> dispatch;
    TComReference<ICreateTypeLib2> library;
    TComReference<ICreateTypeInfo> description;
    automation.ReceiveFrom([](auto to) { return ::LoadTypeLib(L"stdole2.tlb", to); });
    dispatch.ReceiveFrom([&](auto to) { return automation->GetTypeInfoOfGuid(IID_IDispatch, to); });
    library.ReceiveFrom([&](auto to) { return ::CreateTypeLib2(SYS_WIN64, path.c_str(), to); });
    library->SetGuid(kLibrary);
    library->SetVersion(1, 0);
    std::wstring name = L"Server";
    description.ReceiveFrom(
        [&](auto to) { return library->CreateTypeInfo(name.data(), TKIND_INTERFACE, to); });
    description->SetGuid(std::bit_cast<GUID>(kSimulatedServerInterface));
    description->SetTypeFlags(TYPEFLAG_FOLEAUTOMATION);
    HREFTYPE base = 0;
    description->AddRefTypeInfo(dispatch.Get(), &base);
    description->AddImplType(0, base);
    description->LayOut();
    library->SaveAllChanges();
    TComReference<ITypeLib> registered;
    EXPECT_EQ(
        registered.ReceiveFrom([&](auto to) { return ::LoadTypeLibEx(path.c_str(), REGKIND_REGISTER, to); }),
        S_OK);
  }
  ~TInterfaceLibrary() { ::UnRegisterTypeLib(kLibrary, 1, 0, 0, SYS_WIN64); }
  TInterfaceLibrary(const TInterfaceLibrary&) = delete;
  TInterfaceLibrary& operator=(const TInterfaceLibrary&) = delete;
};

std::string Load(const UnicodeString& path) {
  std::ifstream stream(std::filesystem::path(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void Store(const UnicodeString& path, const std::string& bytes) {
  std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}

// COM's interfaces have no virtual destructor; nobody destroys this object through one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The class factory of the running server, and the filter that rejects each of its calls twice.
class TBusyServer final : public IClassFactory, public IMessageFilter {
 public:
  TBusyServer() : fWorld({Load, Store}, Settings()) {
    ::CoRegisterClassObject(kServerClass, static_cast<IClassFactory*>(this), CLSCTX_LOCAL_SERVER,
                            REGCLS_MULTIPLEUSE, &fRegistration);
    ::CoRegisterMessageFilter(this, nullptr);
  }
  ~TBusyServer() {
    ::CoRegisterMessageFilter(nullptr, nullptr);
    ::CoRevokeClassObject(fRegistration);
  }
  TBusyServer(const TBusyServer&) = delete;
  TBusyServer& operator=(const TBusyServer&) = delete;

  /// The calls that were executed, one line each.
  std::string Trace;
  int Rejected = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IClassFactory) *object = static_cast<IClassFactory*>(this);
    if (iid == IID_IMessageFilter) *object = static_cast<IMessageFilter*>(this);
    return *object != nullptr ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
    return ComObject(fWorld.CreateServer())->QueryInterface(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

  DWORD STDMETHODCALLTYPE HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO) override {
    if (++fCalls % 3 == 0) return SERVERCALL_ISHANDLED;
    ++Rejected;
    return SERVERCALL_REJECTED;
  }
  DWORD STDMETHODCALLTYPE RetryRejectedCall(HTASK, DWORD, DWORD) override { return static_cast<DWORD>(-1); }
  DWORD STDMETHODCALLTYPE MessagePending(HTASK, DWORD, DWORD) override { return PENDINGMSG_WAITDEFPROCESS; }

 private:
  TSimulatorSettings Settings() {
    TSimulatorSettings settings;
    settings.Trace = [this](std::string_view line) {
      if (!line.ends_with(".Release")) Trace.append(line) += '\n';
    };
    return settings;
  }

  int fCalls = 0;
  DWORD fRegistration = 0;
  TSimulator fWorld;
};

#pragma GCC diagnostic pop

void HandleMessages() {
  MSG message;
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
}

class BusyServerE2e : public EndToEnd {
 private:
  TComApartment fApartment;
};

}  // namespace

TEST_F(BusyServerE2e, RejectedCallsAreRepeated) {
  WriteFile(L"Teil.ipt", R"({"propertySets": [{}, {}, {}, {"properties": [
    {"name": "IndexHinweis", "type": "text", "value": "alt"}]}]})");
  const TUnregisteredSimulator unregistered;
  const TInterfaceLibrary library(Path(L"Server.tlb"));
  TBusyServer server;
  const TProgram program(L"/RI \"" + Path(L"Teil.ipt") + L"\"", Environment());
  EXPECT_TRUE(WaitUntil([&] {
    HandleMessages();
    return program.HasEnded();
  }));
  const std::string set = "document.PropertySets\npropertysets.Item(4)\npropertyset.";
  EXPECT_EQ(server.Trace, "server.Create\nserver.OpenDocument(\"" + Utf8Path(L"Teil.ipt") + "\")\n" + set +
                              "Count = 1\n" + set + "Item(1)\nproperty.Value = text \"alt\"\n" + set +
                              "Item(1)\nproperty.Name = \"IndexHinweis\"\n" + set +
                              "Item(1)\nproperty.Delete()\ndocument.PropertySets\n"
                              "propertysets.WritePropertiesToFile()\ndocument.CloseDocument()\n");
  EXPECT_GT(server.Rejected, 20);
}

TEST_F(BusyServerE2e, SimulatorRefusesCallsOfUnknownInterfaces) {
  TSimulator world({Load, Store}, {});
  const TDispatch server = world.CreateServer();
  DISPPARAMS none{};
  UINT wrongArgument = 0;
  EXPECT_EQ(ComObject(server)->Invoke(0x03002504, IID_IDispatch, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none,
                                      nullptr, nullptr, &wrongArgument),
            DISP_E_UNKNOWNINTERFACE);
  EXPECT_EQ(world.Calls(), 0);
}
