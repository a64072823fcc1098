#include "simulator/DocumentObjects.h"

#include "simulator/PropertyObjects.h"

using simulator::Handle;

namespace {

constexpr TParameter kIndex[] = {TParameter::Integer};
constexpr TParameter kFileName[] = {TParameter::Text};

constexpr TMember kDocumentMembers[] = {
    {0x03002384, TInvokeKind::Get, "DisplayName", {}, Handle<&TDocumentObject::DisplayName>},
    {0x0300238A, TInvokeKind::Get, "ReferencedFiles", {}, Handle<&TDocumentObject::ReferencedFiles>},
    {0x03002395, TInvokeKind::Get, "PropertySets", {}, Handle<&TDocumentObject::PropertySets>},
    {0x0300239E, TInvokeKind::Method, "CloseDocument", {}, Handle<&TDocumentObject::CloseDocument>},
    {0x0300250E, TInvokeKind::Get, "NeedsMigration", {}, Handle<&TDocumentObject::NeedsMigration>},
};

constexpr TMember kReferencedFilesMembers[] = {
    {simulator::kItem, TInvokeKind::Get, "Item", kIndex, Handle<&TReferencedFilesObject::Item>},
    {simulator::kCount, TInvokeKind::Get, "Count", {}, Handle<&TReferencedFilesObject::Count>},
};

constexpr TMember kReferencedFileMembers[] = {
    {0x03001704, TInvokeKind::Method, "ReplaceReference", kFileName,
     Handle<&TReferencedFileObject::ReplaceReference>},
    {0x03001707, TInvokeKind::Get, "DisplayName", {}, Handle<&TReferencedFileObject::DisplayName>},
    {0x03001708, TInvokeKind::Get, "FullFileName", {}, Handle<&TReferencedFileObject::FullFileName>},
};

}  // namespace

TDocumentObject::TDocumentObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document)
    : TDocumentPart(simulator, "document", std::move(document)) {}

std::span<const TMember> TDocumentObject::Members() const {
  return kDocumentMembers;
}

TVariant TDocumentObject::DisplayName(std::span<const TVariant>) {
  return TVariant::Text(fDocument->DisplayName());
}

TVariant TDocumentObject::ReferencedFiles(std::span<const TVariant>) {
  return TVariant::Object(MakeDispatch(std::make_shared<TReferencedFilesObject>(Simulator(), fDocument)));
}

TVariant TDocumentObject::PropertySets(std::span<const TVariant>) {
  return TVariant::Object(MakeDispatch(std::make_shared<TPropertySetsObject>(Simulator(), fDocument)));
}

TVariant TDocumentObject::CloseDocument(std::span<const TVariant>) {
  fDocument->Close();
  return {};
}

TVariant TDocumentObject::NeedsMigration(std::span<const TVariant>) {
  return TVariant::Boolean(fDocument->Content().NeedsMigration.value_or(0));
}

TReferencedFilesObject::TReferencedFilesObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document)
    : TDocumentPart(simulator, "referencedfiles", std::move(document)) {}

std::span<const TMember> TReferencedFilesObject::Members() const {
  return kReferencedFilesMembers;
}

TVariant TReferencedFilesObject::Item(std::span<const TVariant> arguments) {
  const std::size_t position = simulator::Position(arguments[0], fDocument->Content().References.size());
  return TVariant::Object(
      MakeDispatch(std::make_shared<TReferencedFileObject>(Simulator(), fDocument, position)));
}

TVariant TReferencedFilesObject::Count(std::span<const TVariant>) {
  return simulator::CountOf(fDocument->Content().References.size());
}

TReferencedFileObject::TReferencedFileObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document,
                                             std::size_t index)
    : TDocumentPart(simulator, "referencedfile", std::move(document)), fIndex(index) {}

std::span<const TMember> TReferencedFileObject::Members() const {
  return kReferencedFileMembers;
}

TVariant TReferencedFileObject::ReplaceReference(std::span<const TVariant> arguments) {
  TReferenceData& reference = fDocument->Content().References[fIndex];
  reference.File = arguments[0].AsText();
  reference.DisplayName.reset();  // it named the old file
  return {};
}

TVariant TReferencedFileObject::DisplayName(std::span<const TVariant>) {
  const TReferenceData& reference = fDocument->Content().References[fIndex];
  return TVariant::Text(reference.DisplayName.value_or(simulator::NameWithoutFolder(reference.File)));
}

TVariant TReferencedFileObject::FullFileName(std::span<const TVariant>) {
  return TVariant::Text(fDocument->ReferencedFile(fIndex));
}

namespace simulator {

std::size_t Position(const TVariant& index, std::size_t count) {
  const std::int32_t number = index.AsInteger();
  if (number < 1 || static_cast<std::size_t>(number) > count) throw BareFailure(kBadIndex);
  return static_cast<std::size_t>(number) - 1;
}

TVariant CountOf(std::size_t count) {
  return TVariant::Int32(static_cast<std::int32_t>(count));
}

}  // namespace simulator
