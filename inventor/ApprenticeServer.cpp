#include "inventor/ApprenticeServer.h"

#include <array>
#include <utility>

namespace {

// Class and interface of the server, from the component's type library.
constexpr TGuid kServerClass{0xC343ED84, 0xA129, 0x11D3, {0xB7, 0x99, 0x00, 0x60, 0xB0, 0xF1, 0x59, 0xEF}};
constexpr TGuid kServerInterface{
    0xC343ED82, 0xA129, 0x11D3, {0xB7, 0x99, 0x00, 0x60, 0xB0, 0xF1, 0x59, 0xEF}};

// Dispatch identifiers, from the same type library.
namespace server {
constexpr std::int32_t kOpenDocument = 0x03002502;
constexpr std::int32_t kCloseServer = 0x03002504;
constexpr std::int32_t kSaveSet = 0x03002506;
}  // namespace server

namespace save_set {
constexpr std::int32_t kExecuteSave = 0x0300150A;
constexpr std::int32_t kAddDocumentToSave = 0x03001E07;
}  // namespace save_set

namespace document {
constexpr std::int32_t kDisplayName = 0x03002384;
constexpr std::int32_t kReferencedFiles = 0x0300238A;
constexpr std::int32_t kPropertySets = 0x03002395;
constexpr std::int32_t kCloseDocument = 0x0300239E;
constexpr std::int32_t kNeedsMigration = 0x0300250E;
constexpr std::int32_t kCustomPropertySet = 4;
}  // namespace document

namespace collection {
constexpr std::int32_t kItem = 0;  // DISPID_VALUE
constexpr std::int32_t kCount = 0x7F000006;
}  // namespace collection

namespace property_sets {
constexpr std::int32_t kWritePropertiesToFile = 0x03001A04;
}

namespace property_set {
constexpr std::int32_t kAddProperty = 0x03001B03;
}

namespace property {
constexpr std::int32_t kName = 0x03001D02;
constexpr std::int32_t kValue = 0x03001D03;
constexpr std::int32_t kDelete = 0x03001D04;
}  // namespace property

namespace referenced_file {
constexpr std::int32_t kReplaceReference = 0x03001704;
constexpr std::int32_t kDisplayName = 0x03001707;
constexpr std::int32_t kFullFileName = 0x03001708;
}  // namespace referenced_file

TVariant Get(const TDispatch& object, std::int32_t id) {
  return object.Invoke(id, TInvokeKind::Get);
}

void Call(const TDispatch& object, std::int32_t id) {
  object.Invoke(id, TInvokeKind::Method);
}

std::int32_t CountOf(const TDispatch& object) {
  return Get(object, collection::kCount).AsInteger();
}

/// The object in a result; empty where the component returns none. Only using it is an error then.
TDispatch ObjectIn(const TVariant& result) {
  return result.Type() == TVarType::Dispatch || result.Type() == TVarType::Unknown ? result.AsObject()
                                                                                   : TDispatch();
}

TDispatch ItemOf(const TDispatch& object, std::int32_t index) {
  const std::array arguments{TVariant::Int32(index)};
  return ObjectIn(object.Invoke(collection::kItem, TInvokeKind::Get, arguments));
}

}  // namespace

UnicodeString TProperty::Name() const {
  return Get(fReference, property::kName).AsText();
}

TVariant TProperty::Value() const {
  return Get(fReference, property::kValue);
}

void TProperty::Value(const TVariant& value) const {
  const std::array arguments{value};
  fReference.Invoke(property::kValue, TInvokeKind::Put, arguments);
}

void TProperty::Delete() const {
  Call(fReference, property::kDelete);
}

std::int32_t TPropertySet::Count() const {
  return CountOf(fReference);
}

TProperty TPropertySet::Item(std::int32_t index) const {
  return TProperty(ItemOf(fReference, index));
}

TProperty TPropertySet::AddProperty(const TVariant& value, const UnicodeString& name, std::int32_t id) const {
  const std::array arguments{value, TVariant::Text(name), TVariant::Int32(id)};
  return TProperty(ObjectIn(fReference.Invoke(property_set::kAddProperty, TInvokeKind::Method, arguments)));
}

TPropertySet TPropertySets::Item(std::int32_t index) const {
  return TPropertySet(ItemOf(fReference, index));
}

void TPropertySets::WritePropertiesToFile() const {
  Call(fReference, property_sets::kWritePropertiesToFile);
}

UnicodeString TReferencedFile::FullFileName() const {
  return Get(fReference, referenced_file::kFullFileName).AsText();
}

UnicodeString TReferencedFile::DisplayName() const {
  return Get(fReference, referenced_file::kDisplayName).AsText();
}

void TReferencedFile::ReplaceReference(const UnicodeString& fullFileName) const {
  const std::array arguments{TVariant::Text(fullFileName)};
  fReference.Invoke(referenced_file::kReplaceReference, TInvokeKind::Method, arguments);
}

std::int32_t TReferencedFiles::Count() const {
  return CountOf(fReference);
}

TReferencedFile TReferencedFiles::Item(std::int32_t index) const {
  return TReferencedFile(ItemOf(fReference, index));
}

UnicodeString TDocument::DisplayName() const {
  return Get(fReference, document::kDisplayName).AsText();
}

TPropertySets TDocument::PropertySets() const {
  return TPropertySets(ObjectIn(Get(fReference, document::kPropertySets)));
}

TPropertySet TDocument::CustomProperties() const {
  return PropertySets().Item(document::kCustomPropertySet);
}

TProperty TDocument::CustomProperty(std::int32_t index) const {
  return CustomProperties().Item(index);
}

TReferencedFiles TDocument::ReferencedFiles() const {
  return TReferencedFiles(ObjectIn(Get(fReference, document::kReferencedFiles)));
}

bool TDocument::NeedsMigration() const {
  return Get(fReference, document::kNeedsMigration).AsBoolean();
}

void TDocument::CloseDocument() const {
  Call(fReference, document::kCloseDocument);
}

void TSaveSet::AddDocumentToSave(const TDocument& document, const UnicodeString& fullFileName) const {
  const std::array arguments{TVariant::Unknown(document.fReference), TVariant::Text(fullFileName)};
  fReference.Invoke(save_set::kAddDocumentToSave, TInvokeKind::Method, arguments);
}

void TSaveSet::ExecuteSave() const {
  Call(fReference, save_set::kExecuteSave);
}

TApprenticeServer::TApprenticeServer() : fReference(CreateInstance(kServerClass, kServerInterface)) {}

TDocument TApprenticeServer::OpenDocument(const UnicodeString& fullFileName) const {
  const std::array arguments{TVariant::Text(fullFileName)};
  return TDocument(ObjectIn(fReference.Invoke(server::kOpenDocument, TInvokeKind::Method, arguments)));
}

TSaveSet TApprenticeServer::SaveSet() const {
  return TSaveSet(ObjectIn(Get(fReference, server::kSaveSet)));
}

void TApprenticeServer::CloseServer() const {
  Call(fReference, server::kCloseServer);
}
