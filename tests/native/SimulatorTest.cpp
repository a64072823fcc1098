#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/DispatchTarget.h"
#include "simulator/DocumentFile.h"
#include "simulator/Simulator.h"

namespace {

constexpr auto kMethod = TInvokeKind::Method;
constexpr auto kGet = TInvokeKind::Get;
constexpr auto kPut = TInvokeKind::Put;

constexpr std::int32_t kItem = 0;
constexpr std::int32_t kCount = 0x7F000006;
constexpr std::int32_t kOpenDocument = 0x03002502;
constexpr std::int32_t kSaveSet = 0x03002506;
constexpr std::int32_t kReferencedFiles = 0x0300238A;
constexpr std::int32_t kPropertySets = 0x03002395;
constexpr std::int32_t kCloseDocument = 0x0300239E;
constexpr std::int32_t kAddProperty = 0x03001B03;
constexpr std::int32_t kName = 0x03001D02;
constexpr std::int32_t kValue = 0x03001D03;
constexpr std::int32_t kDelete = 0x03001D04;

using TArguments = std::initializer_list<TVariant>;

TVariant Call(const TDispatch& object, std::int32_t id, TInvokeKind kind, TArguments arguments = {}) {
  return object.Invoke(id, kind, {arguments.begin(), arguments.size()});
}
TDispatch Child(const TDispatch& object, std::int32_t id) {
  return Call(object, id, kGet).AsObject();
}
TDispatch Item(const TDispatch& object, std::int32_t index) {
  return Call(object, kItem, kGet, {TVariant::Int32(index)}).AsObject();
}
TVariant Text(const char16_t* text) {
  return TVariant::Text(text);
}
const std::string kPart =
    R"({"propertySets": [{"properties": [{"name": "Größe", "type": "text", "value": "M 8"}]}],
        "references": ["a.ipt", "b.ipt"]})";
const UnicodeString kPath = u"C:\\Projekt\\Teil.ipt";

class SimulatorTest : public testing::Test {
 protected:
  /// A new simulator with the present settings; the objects of the one before must be gone.
  TDispatch NewServer() {
    settings.Trace = [this](std::string_view line) { trace.emplace_back(line); };
    const TFileAccess access{
        [this](const UnicodeString& path) {
          const auto found = files.find(path);
          if (found == files.end()) throw EError(TErrorKind::InputOutput, 2, u"fehlt");
          return found->second;
        },
        [this](const UnicodeString& path, const std::string& bytes) { files[path] = bytes; }};
    simulator = std::make_unique<TSimulator>(access, settings);
    return simulator->CreateServer();
  }
  static TDispatch Open(const TDispatch& server, const UnicodeString& path = kPath) {
    return Call(server, kOpenDocument, kMethod, {TVariant::Text(path)}).AsObject();
  }
  /// The error of one call; code 0 when it succeeds.
  static EError ErrorOf(const TDispatch& object, std::int32_t id, TInvokeKind kind,
                        TArguments arguments = {}) {
    try {
      Call(object, id, kind, arguments);
    } catch (const EError& error) {
      return error;
    }
    return {TErrorKind::Component, 0, {}};
  }
  void SetPart(const std::string& from, const std::string& to) {
    files[kPath] = kPart;
    files[kPath].replace(kPart.find(from), from.size(), to);
  }

  std::map<UnicodeString, std::string> files{{kPath, kPart}};
  TSimulatorSettings settings;
  std::vector<std::string> trace;
  std::unique_ptr<TSimulator> simulator;
};

}  // namespace

TEST_F(SimulatorTest, RefusesCallsThatItsInterfacesDoNotHave) {
  const TDispatch server = NewServer();
  const TDispatch document = Open(server);
  const TDispatch sets = Child(document, kPropertySets);
  const TDispatch set = Item(sets, 1);
  const TDispatch property = Item(set, 1);
  const TDispatch references = Child(document, kReferencedFiles);
  const TVariant text = Text(u"x");
  const TVariant one = TVariant::Int32(1);
  const struct {
    TDispatch Object;
    std::int32_t Id;
    TInvokeKind Kind;
    std::vector<TVariant> Arguments;
    std::int32_t Code;
    std::string Trace;
  } cases[] = {
      {server, 0x0300FFFF, kGet, {}, kMemberNotFound, "server.0300FFFF get()"},
      {server, kSaveSet, kMethod, {}, kMemberNotFound, "server.03002506 method()"},
      {document, kCloseDocument, kGet, {}, kMemberNotFound, "document.0300239E get()"},
      {server, kOpenDocument, kMethod, {}, kBadParamCount, "server.OpenDocument()"},
      {server, kOpenDocument, kMethod, {TVariant()}, kTypeMismatch, "server.OpenDocument(empty)"},
      {set, kItem, kGet, {TVariant::Int16(1)}, kTypeMismatch, "propertyset.Item(int16 1)"},
      {property, kValue, kPut, {TVariant()}, kTypeMismatch, "property.Value := empty"},
      {sets, kItem, kGet, {TVariant::Int32(2)}, kBadIndex, "propertysets.Item(2)"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.Trace);
    try {
      TargetOf(test.Object)->Invoke(test.Id, test.Kind, test.Arguments);
      ADD_FAILURE() << "not refused";
    } catch (const EError& error) {
      EXPECT_EQ(error.Code(), test.Code);
      EXPECT_TRUE(error.Message().empty()) << "a bare HRESULT, which the caller puts into words";
    }
    EXPECT_EQ(trace.back(),
              test.Trace + " ! " + Utf8FromText(HexText(static_cast<std::uint32_t>(test.Code))));
  }
}

TEST(DocumentFile, TheLargestSingleIsReadAsItWasWritten) {
  const std::string bytes = R"({"propertySets": [{"properties": [
      {"name": "a", "type": "single", "value": 3.4028234663852886e38}]}]})";
  const std::string written = simulator::SerialiseDocument(simulator::ParseDocument(bytes));
  EXPECT_NE(written.find("3.4028235e+38"), std::string::npos) << written;
  EXPECT_EQ(simulator::SerialiseDocument(simulator::ParseDocument(written)), written);
}
