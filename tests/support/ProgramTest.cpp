#include "tests/support/ProgramTest.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "platform/System.h"

namespace {

constexpr TGuid kServerClass{0xC343ED84, 0xA129, 0x11D3, {0xB7, 0x99, 0x00, 0x60, 0xB0, 0xF1, 0x59, 0xEF}};

std::string Load(const UnicodeString& path) {
  std::ifstream stream(headless::HostPath(path), std::ios::binary);
  if (!stream) throw EError(TErrorKind::InputOutput, 2, u"Datei nicht gefunden");
  return {std::istreambuf_iterator<char>(stream), {}};
}

void Store(const UnicodeString& path, const std::string& bytes) {
  std::ofstream stream(headless::HostPath(path), std::ios::binary);
  if (!(stream << bytes).flush()) throw EError(TErrorKind::InputOutput, 101, u"Datenträger voll");
}

}  // namespace

void TProgramTest::StartComponent() {
  Trace.clear();
  TSimulatorSettings settings = Simulation;
  settings.Trace = [this](std::string_view line) { Trace.emplace_back(line); };
  settings.Sleep = [](int milliseconds) { headless::Machine().Now += milliseconds; };
  fSimulator = std::make_unique<TSimulator>(TFileAccess{Load, Store}, settings);
  headless::Machine().CreateInstance = [this](const TGuid& clsid, const TGuid& iid) {
    if (clsid != kServerClass) throw ComponentError(kClassNotRegistered);
    if (iid != kSimulatedServerInterface) throw ComponentError(kNoInterface);
    ReasonAtWork = headless::Machine().ShutdownReason;
    if (RefuseCreation != 0) throw ComponentError(RefuseCreation);
    return fSimulator->CreateServer();
  };
}

std::vector<std::string> TProgramTest::Run(TextView arguments) {
  StartComponent();
  headless::TMachine& machine = headless::Machine();
  machine.Now = 0;
  machine.Log.clear();
  machine.CallCount = 0;
  machine.FailedCall.clear();
  machine.CommandLine = UnicodeString(u"\"C:\\Programme\\VelmoraInventor.exe\" ").append(arguments);
  ProgramMain();
  return machine.Log;
}

bool TProgramTest::Has(const std::vector<std::string>& lines, const std::string& part) {
  return std::ranges::any_of(
      lines, [&part](const std::string& line) { return line.find(part) != std::string::npos; });
}

std::vector<std::string> TProgramTest::Calls() const {
  std::vector<std::string> calls;
  std::ranges::copy_if(Trace, std::back_inserter(calls), [](const std::string& line) {
    return !line.ends_with(".Create") && !line.ends_with(".Release");
  });
  return calls;
}

std::string DocumentWith(const std::string& properties, const std::string& more) {
  return "{\n  \"displayName\": \"Teil\"," + more +
         "\n  \"propertySets\": [{\"name\": \"A\", \"properties\": []}, {\"name\": \"B\", \"properties\": "
         "[]},"
         " {\"name\": \"C\", \"properties\": []},\n    {\"name\": \"D\", \"properties\": [" +
         properties + "]}]\n}\n";
}

std::string TextProperty(const std::string& name, const std::string& value) {
  return R"({"name": ")" + name + R"(", "type": "text", "value": ")" + value + "\"}";
}
