#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/DispatchTarget.h"
#include "simulator/Simulator.h"

namespace {

constexpr auto kMethod = TInvokeKind::Method;
constexpr auto kGet = TInvokeKind::Get;
constexpr auto kPut = TInvokeKind::Put;

constexpr std::int32_t kItem = 0;
constexpr std::int32_t kCount = 0x7F000006;
constexpr std::int32_t kOpenDocument = 0x03002502;
constexpr std::int32_t kCloseServer = 0x03002504;
constexpr std::int32_t kSaveSet = 0x03002506;
constexpr std::int32_t kExecuteSave = 0x0300150A;
constexpr std::int32_t kAddDocumentToSave = 0x03001E07;
constexpr std::int32_t kDisplayName = 0x03002384;
constexpr std::int32_t kReferencedFiles = 0x0300238A;
constexpr std::int32_t kPropertySets = 0x03002395;
constexpr std::int32_t kCloseDocument = 0x0300239E;
constexpr std::int32_t kNeedsMigration = 0x0300250E;
constexpr std::int32_t kWriteProperties = 0x03001A04;
constexpr std::int32_t kAddProperty = 0x03001B03;
constexpr std::int32_t kName = 0x03001D02;
constexpr std::int32_t kValue = 0x03001D03;
constexpr std::int32_t kDelete = 0x03001D04;
constexpr std::int32_t kReplaceReference = 0x03001704;
constexpr std::int32_t kReferenceName = 0x03001707;
constexpr std::int32_t kFullFileName = 0x03001708;

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
std::string Utf8(const TVariant& text) {
  return Utf8FromText(text.AsText());
}

const std::string kPart = R"({
  "displayName": "Deckel",
  "needsMigration": false,
  "propertySets": [
    {
      "name": "Eigene",
      "properties": [
        {
          "name": "Größe",
          "type": "text",
          "value": "M \"8\"",
          "Notiz": 1
        }
      ]
    }
  ],
  "references": [
    "..\\Norm\\Schraube.ipt",
    {
      "file": "X:\\Alt\\Blech.ipt",
      "displayName": "Blech:1"
    }
  ],
  "Bearbeiter": "Müller"
}
)";
const UnicodeString kPath = u"C:\\Projekt\\Teil.ipt";

class SimulatorTest : public testing::Test {
 protected:
  /// A new simulator with the present settings; the objects of the one before must be gone.
  TDispatch NewServer() {
    settings.Trace = [this](std::string_view line) { trace.emplace_back(line); };
    const TFileAccess access{[this](const UnicodeString& path) {
                               const auto found = files.find(path);
                               if (found == files.end()) throw EError(TErrorKind::InputOutput, 2, u"fehlt");
                               return found->second;
                             },
                             [this](const UnicodeString& path, const std::string& bytes) {
                               if (full) throw EError(TErrorKind::InputOutput, 112, u"voll");
                               files[path] = bytes;
                             }};
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
  bool full = false;
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
  const TDispatch saves = Child(server, kSaveSet);
  const TVariant text = Text(u"x");
  const TVariant one = TVariant::Int32(1);
  const TVariant infinite = TVariant::Double(std::numeric_limits<double>::infinity());
  const struct {
    TDispatch Object;
    std::int32_t Id;
    TInvokeKind Kind;
    std::vector<TVariant> Arguments;
    std::int32_t Code;
    std::string Trace;
  } cases[] = {
      {server, 0x0300FFFF, kGet, {}, kMemberNotFound, "server.0300FFFF get()"},
      {server, kDisplayName, kGet, {}, kMemberNotFound, "server.03002384 get()"},
      {server, kSaveSet, kMethod, {}, kMemberNotFound, "server.03002506 method()"},
      {document, kCloseDocument, kGet, {}, kMemberNotFound, "document.0300239E get()"},
      {sets, kValue, kPut, {text}, kMemberNotFound, "propertysets.03001D03 put(text \"x\")"},
      {server, kOpenDocument, kMethod, {}, kBadParamCount, "server.OpenDocument()"},
      {set, kCount, kGet, {one}, kBadParamCount, "propertyset.Count(integer 1)"},
      {server, kOpenDocument, kMethod, {TVariant()}, kTypeMismatch, "server.OpenDocument(empty)"},
      {set, kItem, kGet, {TVariant::Int16(1)}, kTypeMismatch, "propertyset.Item(int16 1)"},
      {references, kItem, kGet, {text}, kTypeMismatch, "referencedfiles.Item(text \"x\")"},
      {property, kValue, kPut, {TVariant()}, kTypeMismatch, "property.Value := empty"},
      {property, kValue, kPut, {infinite}, kTypeMismatch, "property.Value := real"},
      {set,
       kAddProperty,
       kMethod,
       {text, one, text},
       kTypeMismatch,
       "propertyset.AddProperty(text \"x\", integer 1, text \"x\")"},
      {saves,
       kAddDocumentToSave,
       kMethod,
       {TVariant::Object(document), text},
       kTypeMismatch,
       "saveset.AddDocumentToSave(dispatch document, \"x\")"},
      {sets, kItem, kGet, {TVariant::Int32(0)}, kBadIndex, "propertysets.Item(0)"},
      {sets, kItem, kGet, {TVariant::Int32(2)}, kBadIndex, "propertysets.Item(2)"},
      {references, kItem, kGet, {TVariant::Int32(3)}, kBadIndex, "referencedfiles.Item(3)"},
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

TEST_F(SimulatorTest, ValuesKeepTheirTypesThroughTheFile) {
  const struct {
    std::string Type;
    std::string Json;
    TVariant Value;
    std::string Trace;
  } cases[] = {
      {"text", R"("Ä \"€\" 😀\n\\")", Text(u"Ä \"€\" 😀\n\\"), "\"Ä \"\"€\"\" 😀␊\\\""},
      {"int16", "-32768", TVariant::Int16(-32768), "-32768"},
      {"integer", "-2147483648", TVariant::Int32(-2147483647 - 1), "-2147483648"},
      {"single", "0.1", TVariant::Single(0.1F), "0.1"},
      {"real", "0.1", TVariant::Double(0.1), "0.1"},
      {"boolean", "true", TVariant::Boolean(-1), "true"},
      {"boolean", "5", TVariant::Boolean(5), "5"},
      {"date", "\"2024-03-15\"", TVariant::Date(45366), "2024-03-15"},
      {"date", "\"2024-03-15T18:00:00\"", TVariant::Date(45366.75), "2024-03-15T18:00:00"},
      {"date", "\"1899-12-29T06:00:00\"", TVariant::Date(-1.25), "1899-12-29T06:00:00"},
      {"date", "\"9999-12-31T12:00:00\"", TVariant::Date(2958465.5), "9999-12-31T12:00:00"},
  };
  for (const auto& test : cases) {
    const std::string typed = test.Type + " " + test.Trace;
    SCOPED_TRACE(typed);
    SetPart("\"text\",\n          \"value\": \"M \\\"8\\\"\"",
            "\"" + test.Type + "\",\n          \"value\": " + test.Json);
    const std::string before = files[kPath];
    const TDispatch server = NewServer();
    const TDispatch document = Open(server);
    const TDispatch sets = Child(document, kPropertySets);
    const TDispatch property = Item(Item(sets, 1), 1);
    EXPECT_EQ(Call(property, kValue, kGet).Type(), test.Value.Type());
    EXPECT_EQ(trace.back(), "property.Value = " + typed);
    Call(property, kValue, kPut, {Text(u"")});
    Call(property, kValue, kPut, {test.Value});
    EXPECT_EQ(trace.back(), "property.Value := " + typed);
    Call(sets, kWriteProperties, kMethod);
    EXPECT_EQ(files[kPath], before);
  }
}

TEST_F(SimulatorTest, RefusesWhatIsNoReadableDocument) {
  const auto property = [](const std::string& typeAndValue) {
    return R"({"propertySets": [{"properties": [{"name": "N", "type": )" + typeAndValue + "}]}]}";
  };
  const struct {
    UnicodeString Path;
    std::string Bytes;
    std::string Reason;
  } cases[] = {
      {u"C:\\fehlt.idw", "", "\"C:\\fehlt.idw\" kann nicht gelesen werden: fehlt"},
      {u"", "", "\"\" ist keine Inventor-Datei"},
      {u"C:\\A.ipt.bak", "{}", "ist keine Inventor-Datei"},
      {u"C:\\A.IPT", "{\"a\": ", "\"C:\\A.IPT\" ist kein lesbares Dokument: [json"},
      {kPath, "[]", "kein JSON-Objekt"},
      {kPath, "{\"displayName\": \"\xE4\"}", "ill-formed UTF-8"},
      {kPath, R"({"pastEnd": "maybe"})", "Unbekannter Wert für \"pastEnd\": \"maybe\""},
      {kPath, R"({"needsMigration": 65536})", "Zahl außerhalb des Bereichs: 65536"},
      {kPath, R"({"references": "x"})", "\"references\" ist keine Liste"},
      {kPath, property(R"("int16", "value": 32768)"), "Zahl außerhalb des Bereichs: 32768"},
      {kPath, property(R"("date", "value": "2023-02-29")"), "Datum erwartet"},
      {kPath, property(R"("text", "value": 1)"), "Text erwartet: 1"},
      {kPath, property(R"("string")"), "Unbekannter Typ: \"string\""},
  };
  for (const auto& test : cases) {
    if (!test.Bytes.empty()) files[test.Path] = test.Bytes;
    const TDispatch server = NewServer();
    const EError error = ErrorOf(server, kOpenDocument, kMethod, {TVariant::Text(test.Path)});
    EXPECT_NE(std::string(error.what()).find(test.Reason), std::string::npos) << error.what();
    EXPECT_EQ(error.Source(), kSimulatorSource);
    EXPECT_EQ(simulator->LiveObjects(), 1);
  }
}

TEST_F(SimulatorTest, SwitchesDecideAboutPastEndAndDuplicates) {
  const std::string lenient = R"({"pastEnd": "empty", "duplicateProperty": "accept",)";
  const struct {
    std::string Document;
    std::optional<TPastEnd> PastEnd;
    std::optional<TDuplicateProperty> Duplicate;
    bool Lenient;
  } cases[] = {
      {"{", {}, {}, false},
      {lenient, {}, {}, true},
      {"{", TPastEnd::Empty, TDuplicateProperty::Accept, true},
      {lenient, TPastEnd::Error, TDuplicateProperty::Refuse, false},
  };
  for (const auto& test : cases) {
    SetPart("{", test.Document);
    settings.PastEnd = test.PastEnd;
    settings.DuplicateProperty = test.Duplicate;
    const TDispatch server = NewServer();
    const TDispatch document = Open(server);
    const TDispatch set = Item(Child(document, kPropertySets), 1);
    EXPECT_EQ(ErrorOf(set, kItem, kGet, {TVariant::Int32(2)}).Code(), test.Lenient ? 0 : kBadIndex);
    EXPECT_EQ(ErrorOf(set, kItem, kGet, {TVariant::Int32(-1)}).Code(), kBadIndex);
    if (test.Lenient) {
      const TDispatch none = Item(set, 2);
      EXPECT_EQ(Utf8(Call(none, kName, kGet)), "");
      EXPECT_EQ(Call(none, kValue, kGet).Type(), TVarType::Empty);
      EXPECT_NE(ErrorOf(none, kDelete, kMethod).Code(), 0);
    }
    const EError error =
        ErrorOf(set, kAddProperty, kMethod, {TVariant::Int32(1), Text(u"Größe"), TVariant::Int32(0)});
    EXPECT_STREQ(error.what(), test.Lenient ? "" : "Die Eigenschaft \"Größe\" ist schon vorhanden.");
    // Another case is another name.
    Call(set, kAddProperty, kMethod, {TVariant::Int32(1), Text(u"größe"), TVariant::Int32(0)});
    EXPECT_EQ(Call(set, kCount, kGet).AsInteger(), test.Lenient ? 3 : 2);
  }
}

TEST_F(SimulatorTest, WritesPropertiesAloneOrTheWholeDocument) {
  const TDispatch server = NewServer();
  const TDispatch document = Open(server);
  const TDispatch references = Child(document, kReferencedFiles);
  const TDispatch sets = Child(document, kPropertySets);
  EXPECT_EQ(Utf8(Call(Item(references, 1), kFullFileName, kGet)), "C:\\Norm\\Schraube.ipt");
  EXPECT_EQ(Utf8(Call(Item(references, 1), kReferenceName, kGet)), "Schraube.ipt");
  EXPECT_EQ(Utf8(Call(Item(references, 2), kReferenceName, kGet)), "Blech:1");
  Call(Item(references, 2), kReplaceReference, kMethod, {Text(u"C:\\Projekt\\Teil.iam")});
  EXPECT_EQ(Utf8(Call(Item(references, 2), kReferenceName, kGet)), "Teil.iam");
  Call(Item(Item(sets, 1), 1), kValue, kPut, {Text(u"neu")});
  EXPECT_EQ(files[kPath], kPart) << "nothing is written before it is asked for";

  // The property sets go into the file as it is by then.
  SetPart("Müller", "Schulze");
  std::string expected = files[kPath];
  expected.replace(expected.find(R"(M \"8\")"), 7, "neu");
  Call(sets, kWriteProperties, kMethod);
  EXPECT_EQ(files[kPath], expected);

  // The save set is the server's, whichever reference adds to it, and writes the document as it was opened.
  Call(Child(server, kSaveSet), kAddDocumentToSave, kMethod,
       {TVariant::Unknown(document), TVariant::Text(kPath)});
  Call(Child(server, kSaveSet), kAddDocumentToSave, kMethod,
       {TVariant::Unknown(document), Text(u"D:\\Kopie.ipt")});
  Call(Child(server, kSaveSet), kExecuteSave, kMethod);
  expected.replace(expected.find("Schulze"), 7, "Müller");
  const std::size_t from = expected.find("    {\n      \"file\"");
  expected.replace(from, expected.find("\n  ],\n  \"Bearb") - from, R"(    "C:\\Projekt\\Teil.iam")");
  EXPECT_EQ(files[kPath], expected);
  expected.replace(expected.find("..\\\\Norm"), 2, "C:");
  EXPECT_EQ(files[u"D:\\Kopie.ipt"], expected) << "relative names keep their meaning";

  full = true;
  EXPECT_STREQ(ErrorOf(sets, kWriteProperties, kMethod).what(),
               "\"C:\\Projekt\\Teil.ipt\" kann nicht geschrieben werden: voll");
}

TEST_F(SimulatorTest, SavesOnlyOpenMigratedDocumentsOfItsOwn) {
  SetPart("false", "2");
  const TDispatch server = NewServer();
  const TDispatch other = simulator->CreateServer();
  const TDispatch document = Open(server);
  EXPECT_EQ(Call(document, kNeedsMigration, kGet).AsVariantBool(), 2);
  const TVariant path = TVariant::Text(kPath);
  const TDispatch foreign = Child(other, kSaveSet);
  EXPECT_NE(ErrorOf(foreign, kAddDocumentToSave, kMethod, {TVariant::Unknown(document), path}).Code(), 0);
  EXPECT_NE(ErrorOf(foreign, kAddDocumentToSave, kMethod, {TVariant::Unknown(other), path}).Code(), 0);
  const TDispatch saves = Child(server, kSaveSet);
  Call(saves, kAddDocumentToSave, kMethod, {TVariant::Unknown(document), path});
  EXPECT_NE(std::string(ErrorOf(saves, kExecuteSave, kMethod).what()).find("migriert"), std::string::npos);
  Call(document, kCloseDocument, kMethod);
  EXPECT_NE(std::string(ErrorOf(saves, kExecuteSave, kMethod).what()).find("geschlossen"), std::string::npos);
}

TEST_F(SimulatorTest, WhatIsClosedOrDeletedIsOfNoUse) {
  const TDispatch server = NewServer();
  const TDispatch document = Open(server);
  const TDispatch second = Open(server);
  const TDispatch sets = Child(document, kPropertySets);
  const TDispatch set = Item(sets, 1);
  const TDispatch property = Item(set, 1);
  const TDispatch same = Item(set, 1);
  const TDispatch saves = Child(server, kSaveSet);
  Call(property, kDelete, kMethod);
  EXPECT_EQ(Call(set, kCount, kGet).AsInteger(), 0);
  EXPECT_STREQ(ErrorOf(same, kValue, kGet).what(), "Die Eigenschaft \"Größe\" ist gelöscht.");

  Call(document, kCloseDocument, kMethod);
  const char* const closed = "Das Dokument \"C:\\Projekt\\Teil.ipt\" ist geschlossen.";
  EXPECT_STREQ(ErrorOf(document, kCloseDocument, kMethod).what(), closed);
  EXPECT_STREQ(ErrorOf(sets, kWriteProperties, kMethod).what(), closed);
  EXPECT_STREQ(ErrorOf(property, kName, kGet).what(), closed);
  EXPECT_EQ(Utf8(Call(second, kDisplayName, kGet)), "Deckel") << "only the one document is closed";
  Call(server, kCloseServer, kMethod);
  EXPECT_STREQ(ErrorOf(second, kDisplayName, kGet).what(), closed);
  EXPECT_STREQ(ErrorOf(server, kSaveSet, kGet).what(), "Der Server ist geschlossen.");
  EXPECT_STREQ(ErrorOf(saves, kExecuteSave, kMethod).what(), "Der Server ist geschlossen.");
}

TEST_F(SimulatorTest, AnyCallCanBeMadeToFailAndNothingStaysAlive) {
  const std::vector<std::string> whole = {
      "server.Create",         "server.OpenDocument(\"C:\\Projekt\\Teil.ipt\")",
      "document.PropertySets", "propertysets.Item(1)",
      "propertyset.Count = 1", "propertyset.AddProperty(text \"\", \"A\", 0)",
      "property.Delete()",     "document.NeedsMigration = false",
      "document.Release",      "server.Release"};
  settings.FailText = u"gesperrt\nvon Müller";
  for (settings.FailCall = 1; settings.FailCall <= 8; ++settings.FailCall) {
    SCOPED_TRACE(settings.FailCall);
    trace.clear();
    std::string message;
    try {
      const TDispatch server = NewServer();
      const TDispatch document = Open(server);
      const TDispatch set = Item(Child(document, kPropertySets), 1);
      Call(set, kCount, kGet);
      const TVariant added = Call(set, kAddProperty, kMethod, {Text(u""), Text(u"A"), TVariant::Int32(0)});
      Call(added.AsObject(), kDelete, kMethod);
      Call(document, kNeedsMigration, kGet);
    } catch (const EError& error) {
      message = error.what();
    }
    EXPECT_EQ(simulator->LiveObjects(), 0);
    const bool survived = settings.FailCall == 8;
    EXPECT_EQ(message, survived ? "" : "gesperrt\nvon Müller");
    EXPECT_EQ(trace.back(), "server.Release");
    if (survived) {
      EXPECT_EQ(trace, whole);
    } else {
      const std::string& call = whole[static_cast<std::size_t>(settings.FailCall)];
      EXPECT_EQ(trace.at(static_cast<std::size_t>(settings.FailCall)),
                call.substr(0, call.find(" = ")) + " ! gesperrt␊von Müller");
    }
  }
}
