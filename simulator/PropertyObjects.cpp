#include "simulator/PropertyObjects.h"

#include <algorithm>
#include <utility>

using simulator::Failure;
using simulator::Handle;
using simulator::Quoted;

namespace {

constexpr TParameter kIndex[] = {TParameter::Integer};
constexpr TParameter kValue[] = {TParameter::Value};
constexpr TParameter kValueNameId[] = {TParameter::Value, TParameter::Text, TParameter::Integer};

constexpr TMember kPropertySetsMembers[] = {
    {simulator::kItem, TInvokeKind::Get, "Item", kIndex, Handle<&TPropertySetsObject::Item>},
    {0x03001A04,
     TInvokeKind::Method,
     "WritePropertiesToFile",
     {},
     Handle<&TPropertySetsObject::WritePropertiesToFile>},
    {simulator::kCount, TInvokeKind::Get, "Count", {}, Handle<&TPropertySetsObject::Count>},
};

constexpr TMember kPropertySetMembers[] = {
    {simulator::kItem, TInvokeKind::Get, "Item", kIndex, Handle<&TPropertySetObject::Item>},
    {0x03001B03, TInvokeKind::Method, "AddProperty", kValueNameId, Handle<&TPropertySetObject::AddProperty>},
    {simulator::kCount, TInvokeKind::Get, "Count", {}, Handle<&TPropertySetObject::Count>},
};

constexpr TMember kPropertyMembers[] = {
    {0x03001D02, TInvokeKind::Get, "Name", {}, Handle<&TPropertyObject::Name>},
    {0x03001D03, TInvokeKind::Get, "Value", {}, Handle<&TPropertyObject::Value>, TResult::Typed},
    {0x03001D03, TInvokeKind::Put, "Value", kValue, Handle<&TPropertyObject::PutValue>},
    {0x03001D04, TInvokeKind::Method, "Delete", {}, Handle<&TPropertyObject::Delete>},
};

}  // namespace

TPropertySetsObject::TPropertySetsObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document)
    : TDocumentPart(simulator, "propertysets", std::move(document)) {}

std::span<const TMember> TPropertySetsObject::Members() const {
  return kPropertySetsMembers;
}

TVariant TPropertySetsObject::Item(std::span<const TVariant> arguments) {
  const std::size_t position = simulator::Position(arguments[0], fDocument->Content().PropertySets.size());
  return TVariant::Object(
      MakeDispatch(std::make_shared<TPropertySetObject>(Simulator(), fDocument, position)));
}

TVariant TPropertySetsObject::WritePropertiesToFile(std::span<const TVariant>) {
  fDocument->WriteProperties();
  return {};
}

TVariant TPropertySetsObject::Count(std::span<const TVariant>) {
  return simulator::CountOf(fDocument->Content().PropertySets.size());
}

TPropertySetObject::TPropertySetObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document,
                                       std::size_t index)
    : TDocumentPart(simulator, "propertyset", std::move(document)), fIndex(index) {}

std::span<const TMember> TPropertySetObject::Members() const {
  return kPropertySetMembers;
}

TVariant TPropertySetObject::Item(std::span<const TVariant> arguments) {
  const auto& properties = Set().Properties;
  const std::int32_t number = arguments[0].AsInteger();
  const bool pastEnd = number > 0 && static_cast<std::size_t>(number) > properties.size();
  if (pastEnd && fDocument->PastEnd() == TPastEnd::Empty) return ObjectFor(nullptr);
  return ObjectFor(properties[simulator::Position(arguments[0], properties.size())]);
}

TVariant TPropertySetObject::AddProperty(std::span<const TVariant> arguments) {
  auto& properties = Set().Properties;
  const UnicodeString& name = arguments[1].AsText();
  const bool present =
      std::ranges::any_of(properties, [&name](const auto& property) { return property->Name == name; });
  if (present && fDocument->DuplicateProperty() == TDuplicateProperty::Refuse) {
    throw Failure(u"Die Eigenschaft " + Quoted(name) + u" ist schon vorhanden.");
  }
  properties.push_back(std::make_shared<TPropertyData>(TPropertyData{name, arguments[0], {}}));
  return ObjectFor(properties.back());
}

TVariant TPropertySetObject::Count(std::span<const TVariant>) {
  return simulator::CountOf(Set().Properties.size());
}

TVariant TPropertySetObject::ObjectFor(std::shared_ptr<TPropertyData> property) const {
  return TVariant::Object(
      MakeDispatch(std::make_shared<TPropertyObject>(Simulator(), fDocument, fIndex, std::move(property))));
}

TPropertyObject::TPropertyObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document,
                                 std::size_t setIndex, std::shared_ptr<TPropertyData> property)
    : TDocumentPart(simulator, "property", std::move(document)),
      fSetIndex(setIndex),
      fProperty(std::move(property)) {}

std::span<const TMember> TPropertyObject::Members() const {
  return kPropertyMembers;
}

TVariant TPropertyObject::Name(std::span<const TVariant>) {
  return TVariant::Text(fProperty != nullptr ? fProperty->Name : UnicodeString());
}

TVariant TPropertyObject::Value(std::span<const TVariant>) {
  return fProperty != nullptr ? fProperty->Value : TVariant();
}

TVariant TPropertyObject::PutValue(std::span<const TVariant> arguments) {
  CheckChangeable();
  fProperty->Value = arguments[0];
  return {};
}

TVariant TPropertyObject::Delete(std::span<const TVariant>) {
  CheckChangeable();
  std::erase(Set().Properties, fProperty);
  return {};
}

void TPropertyObject::CheckUsable() const {
  TDocumentPart::CheckUsable();
  const auto& properties = Set().Properties;
  const bool present = fProperty == nullptr || std::ranges::find(properties, fProperty) != properties.end();
  if (!present) throw Failure(u"Die Eigenschaft " + Quoted(fProperty->Name) + u" ist gelöscht.");
}

void TPropertyObject::CheckChangeable() const {
  if (fProperty == nullptr) throw Failure(u"Hinter dem Ende des Satzes liegt keine Eigenschaft.");
}
