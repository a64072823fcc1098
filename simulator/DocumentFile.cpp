#include "simulator/DocumentFile.h"

#include <algorithm>
#include <initializer_list>
#include <nlohmann/json.hpp>

#include "platform/Error.h"
#include "simulator/PropertyValue.h"

using TJson = nlohmann::ordered_json;

namespace {

[[noreturn]] void Refuse(const std::string& what) {
  throw EError(TErrorKind::InputOutput, 0, TextFromUtf8(what));
}

UnicodeString TextOf(const TJson& json) {
  return TextFromUtf8(json.get<std::string>());
}

const TJson* Find(const TJson& object, const char* name) {
  const auto found = object.find(name);
  return found != object.end() ? &*found : nullptr;
}

std::optional<UnicodeString> OptionalText(const TJson& object, const char* name) {
  const TJson* found = Find(object, name);
  return found != nullptr ? std::optional(TextOf(*found)) : std::nullopt;
}

/// The array `name`; an absent one counts as empty.
const TJson& ArrayOf(const TJson& object, const char* name) {
  static const TJson kNone = TJson::array();
  const TJson* found = Find(object, name);
  if (found == nullptr) return kNone;
  if (!found->is_array()) Refuse(std::string("\"") + name + "\" ist keine Liste");
  return *found;
}

std::string ExtraOf(const TJson& object, std::initializer_list<const char*> known) {
  TJson rest;
  for (const auto& [name, value] : object.items()) {
    if (std::ranges::find(known, name) == known.end()) rest[name] = value;
  }
  return rest.empty() ? std::string() : rest.dump();
}

void AppendExtra(TJson& object, const std::string& extra) {
  if (!extra.empty()) object.update(TJson::parse(extra));
}

TPropertyData ParseProperty(const TJson& json) {
  const TJson* value = Find(json, "value");
  return {TextOf(json.at("name")),
          simulator::ValueFromJson(json.at("type").get<std::string>(), value != nullptr ? *value : TJson()),
          ExtraOf(json, {"name", "type", "value"})};
}

TPropertySetData ParsePropertySet(const TJson& json) {
  if (!json.is_object()) Refuse("Eine Eigenschaftsgruppe ist kein JSON-Objekt");
  TPropertySetData set{
      OptionalText(json, "name").value_or(UnicodeString()), ExtraOf(json, {"name", "properties"}), {}, {}};
  for (const TJson& property : ArrayOf(json, "properties")) set.Add(ParseProperty(property));
  return set;
}

TReferenceData ParseReference(const TJson& json) {
  if (json.is_string()) return {TextOf(json), std::nullopt, {}};
  return {TextOf(json.at("file")), OptionalText(json, "displayName"), ExtraOf(json, {"file", "displayName"})};
}

/// A switch of the document; `Parse` knows its words.
template <auto Parse>
auto SwitchOf(const TJson& json, const char* name) -> decltype(Parse("")) {
  const TJson* found = Find(json, name);
  if (found == nullptr) return std::nullopt;
  const auto value = Parse(found->get<std::string>());
  if (!value) Refuse(std::string("Unbekannter Wert für \"") + name + "\": " + found->dump());
  return value;
}

TDocumentFile ParseObject(const TJson& json) {
  if (!json.is_object()) Refuse("kein JSON-Objekt");
  TDocumentFile document;
  document.DisplayName = OptionalText(json, "displayName");
  if (const TJson* flag = Find(json, "needsMigration")) {
    document.NeedsMigration = simulator::VariantBoolFromJson(*flag);
  }
  document.PastEnd = SwitchOf<simulator::PastEndFromWord>(json, "pastEnd");
  document.DuplicateProperty = SwitchOf<simulator::DuplicatePropertyFromWord>(json, "duplicateProperty");
  for (const TJson& set : ArrayOf(json, "propertySets"))
    document.PropertySets.push_back(ParsePropertySet(set));
  for (const TJson& file : ArrayOf(json, "references")) document.References.push_back(ParseReference(file));
  document.Extra = ExtraOf(
      json, {"displayName", "needsMigration", "pastEnd", "duplicateProperty", "propertySets", "references"});
  return document;
}

TJson JsonFromProperty(const TPropertyData& property) {
  TJson json;
  json["name"] = Utf8FromText(property.Name);
  json["type"] = simulator::TypeName(property.Value.Type());
  TJson value = simulator::JsonFromValue(property.Value);
  if (!value.is_null()) json["value"] = std::move(value);
  AppendExtra(json, property.Extra);
  return json;
}

TJson JsonFromPropertySet(const TPropertySetData& set) {
  TJson json;
  if (!set.Name.empty()) json["name"] = Utf8FromText(set.Name);
  json["properties"] = TJson::array();
  for (const auto& property : set.Properties) json["properties"].push_back(JsonFromProperty(*property));
  AppendExtra(json, set.Extra);
  return json;
}

TJson JsonFromReference(const TReferenceData& reference) {
  if (!reference.DisplayName && reference.Extra.empty()) return Utf8FromText(reference.File);
  TJson json;
  json["file"] = Utf8FromText(reference.File);
  if (reference.DisplayName) json["displayName"] = Utf8FromText(*reference.DisplayName);
  AppendExtra(json, reference.Extra);
  return json;
}

}  // namespace

const std::shared_ptr<TPropertyData>& TPropertySetData::Add(TPropertyData property) {
  Names.insert(property.Name);
  return Properties.emplace_back(std::make_shared<TPropertyData>(std::move(property)));
}

void TPropertySetData::Remove(TPropertyData& property) {
  Names.erase(Names.find(property.Name));
  std::erase_if(Properties, [&property](const auto& one) { return one.get() == &property; });
  property.Deleted = true;
}

namespace simulator {

TDocumentFile ParseDocument(std::string_view bytes) {
  try {
    return ParseObject(TJson::parse(bytes));
  } catch (const TJson::exception& error) {
    Refuse(error.what());
  }
}

std::string SerialiseDocument(const TDocumentFile& document) {
  TJson json;
  if (document.DisplayName) json["displayName"] = Utf8FromText(*document.DisplayName);
  if (document.NeedsMigration) json["needsMigration"] = JsonFromVariantBool(*document.NeedsMigration);
  if (document.PastEnd) json["pastEnd"] = *document.PastEnd == TPastEnd::Error ? "error" : "empty";
  if (document.DuplicateProperty) {
    json["duplicateProperty"] =
        *document.DuplicateProperty == TDuplicateProperty::Refuse ? "refuse" : "accept";
  }
  json["propertySets"] = TJson::array();
  for (const TPropertySetData& set : document.PropertySets)
    json["propertySets"].push_back(JsonFromPropertySet(set));
  json["references"] = TJson::array();
  for (const TReferenceData& file : document.References)
    json["references"].push_back(JsonFromReference(file));
  AppendExtra(json, document.Extra);
  return json.dump(2) + "\n";
}

std::optional<TPastEnd> PastEndFromWord(std::string_view word) {
  if (word == "error") return TPastEnd::Error;
  if (word == "empty") return TPastEnd::Empty;
  return std::nullopt;
}

std::optional<TDuplicateProperty> DuplicatePropertyFromWord(std::string_view word) {
  if (word == "refuse") return TDuplicateProperty::Refuse;
  if (word == "accept") return TDuplicateProperty::Accept;
  return std::nullopt;
}

}  // namespace simulator
