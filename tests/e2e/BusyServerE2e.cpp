#include <oaidl.h>
#include <objbase.h>

#include "tests/e2e/Support.h"

// The component as a program of its own, which rejects calls while it is busy: here it is the test's process.

namespace {

constexpr CLSID kServerClass{0xC343ED84, 0xA129, 0x11D3, {0xB7, 0x99, 0x00, 0x60, 0xB0, 0xF1, 0x59, 0xEF}};
constexpr IID kServerInterface{0xC343ED82, 0xA129, 0x11D3, {0xB7, 0x99, 0x00, 0x60, 0xB0, 0xF1, 0x59, 0xEF}};
constexpr GUID kLibrary{0x6E0D2B51, 0x3C8F, 0x4A97, {0xB1, 0x64, 0x5A, 0x0E, 0x9D, 0x27, 0xC3, 0x48}};

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
    description->SetGuid(kServerInterface);
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

// COM's interfaces have no virtual destructor; nobody destroys this object through one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// Rejects two of every six calls: creating a server takes several calls, all of which must be handled.
class TBusyFilter final : public IMessageFilter {
 public:
  TBusyFilter() { ::CoRegisterMessageFilter(this, nullptr); }
  ~TBusyFilter() { ::CoRegisterMessageFilter(nullptr, nullptr); }
  TBusyFilter(const TBusyFilter&) = delete;
  TBusyFilter& operator=(const TBusyFilter&) = delete;

  int Rejected = 0;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IMessageFilter ? this : nullptr;
    return *object != nullptr ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }

  DWORD STDMETHODCALLTYPE HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO) override {
    if (++fCalls % 6 < 4) return SERVERCALL_ISHANDLED;
    ++Rejected;
    return SERVERCALL_REJECTED;
  }
  DWORD STDMETHODCALLTYPE RetryRejectedCall(HTASK, DWORD, DWORD) override { return static_cast<DWORD>(-1); }
  DWORD STDMETHODCALLTYPE MessagePending(HTASK, DWORD, DWORD) override { return PENDINGMSG_WAITDEFPROCESS; }

 private:
  int fCalls = 0;
};

#pragma GCC diagnostic pop

/// The simulator's DLL, served to other processes by this one while COM cannot load it itself.
class TLocalServer {
 public:
  TLocalServer() {
    TComReference<IUnknown> factory;
    Entry<HRESULT()>("DllUnregisterServer")();
    EXPECT_EQ(factory.ReceiveFrom([&](IUnknown** to) {
      return Entry<HRESULT(REFCLSID, REFIID, void**)>("DllGetClassObject")(kServerClass, IID_IUnknown,
                                                                           reinterpret_cast<void**>(to));
    }),
              S_OK);
    EXPECT_EQ(::CoRegisterClassObject(kServerClass, factory.Get(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE,
                                      &fRegistration),
              S_OK);
  }
  ~TLocalServer() {
    ::CoRevokeClassObject(fRegistration);
    Entry<HRESULT()>("DllRegisterServer")();
  }
  TLocalServer(const TLocalServer&) = delete;
  TLocalServer& operator=(const TLocalServer&) = delete;

 private:
  template <class TFunction>
  TFunction* Entry(const char* name) const {
    return reinterpret_cast<TFunction*>(reinterpret_cast<void*>(::GetProcAddress(fDll, name)));
  }

  HMODULE fDll = ::LoadLibraryW(BuiltPath(L"ApprenticeSimulator.dll").c_str());
  DWORD fRegistration = 0;
};

class BusyServerE2e : public EndToEnd {
 protected:
  BusyServerE2e() { ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
  ~BusyServerE2e() override { ::CoUninitialize(); }
};

void HandleMessages() {
  MSG message;
  while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) ::DispatchMessageW(&message);
}

}  // namespace

TEST_F(BusyServerE2e, RejectedCallsAreRepeated) {
  WriteFile(L"Teil.ipt", R"({"propertySets": [{}, {}, {}, {"properties": [
    {"name": "IndexHinweis", "type": "text", "value": "alt"}]}]})");
  const TInterfaceLibrary library(Path(L"Server.tlb"));
  const TLocalServer server;
  const TBusyFilter filter;
  const TProgram program(L"/RI \"" + Path(L"Teil.ipt") + L"\"", Environment());
  ::SetEnvironmentVariableW(L"APPRENTICE_TRACE", Path(L"trace.txt").c_str());  // read by the first call
  EXPECT_TRUE(WaitUntil([&] {
    HandleMessages();
    return program.HasEnded();
  }));
  std::string calls;
  for (const std::string& line : Trace()) {
    if (!line.ends_with(".Release")) calls += line + '\n';
  }
  const std::string set = "document.PropertySets\npropertysets.Item(4)\npropertyset.";
  EXPECT_EQ(calls, "server.Create\nserver.OpenDocument(\"" + Utf8Path(L"Teil.ipt") + "\")\n" + set +
                       "Count = 1\n" + set + "Item(1)\nproperty.Value = text \"alt\"\n" + set +
                       "Item(1)\nproperty.Name = \"IndexHinweis\"\n" + set +
                       "Item(1)\nproperty.Delete()\ndocument.PropertySets\n"
                       "propertysets.WritePropertiesToFile()\ndocument.CloseDocument()\n");
  EXPECT_GT(filter.Rejected, 5);
}
