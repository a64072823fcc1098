#include "simulator/ServerObjects.h"

#include <algorithm>
#include <vector>

#include "simulator/OpenDocument.h"

// The objects, from the innermost to the server.

using simulator::Failure;
using simulator::Member;
using simulator::Quoted;

namespace {

constexpr std::int32_t kItem = 0;  // DISPID_VALUE
constexpr std::int32_t kCount = 0x7F000006;

using TObject = std::shared_ptr<TDispatchTarget>;

/// A collection's index as a position from 0.
std::size_t Position(std::int32_t index, std::size_t count) {
  if (index < 1 || static_cast<std::size_t>(index) > count) throw simulator::BareFailure(kBadIndex);
  return static_cast<std::size_t>(index) - 1;
}

/// An object that belongs to a document: keeps its contents alive and cannot be used after it was closed.
class TDocumentPart : public TSimulatedObject {
 protected:
  TDocumentPart(TSimulator& simulator, std::string_view className, std::shared_ptr<TOpenDocument> document)
      : TSimulatedObject(simulator, className), fDocument(std::move(document)) {}

  void CheckUsable() const override { fDocument->CheckOpen(); }

  /// Another part of the same document.
  template <class T, class... TMore>
  TObject Part(TMore&&... more) const {
    return std::make_shared<T>(Simulator(), fDocument, std::forward<TMore>(more)...);
  }

  std::shared_ptr<TOpenDocument> fDocument;
};

/// A property for as long as it is in its set or, without one, what a set returns past its end.
class TPropertyObject final : public TDocumentPart {
 public:
  TPropertyObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document, TPropertySetData& set,
                  std::shared_ptr<TPropertyData> property)
      : TDocumentPart(simulator, "property", std::move(document)),
        fSet(set),
        fProperty(std::move(property)) {}

 private:
  std::span<const TMember> Members() const override {
    static constexpr TMember kMembers[] = {
        Member<&TPropertyObject::Name>(0x03001D02, TInvokeKind::Get, "Name"),
        Member<&TPropertyObject::Value>(0x03001D03, TInvokeKind::Get, "Value"),
        Member<&TPropertyObject::PutValue>(0x03001D03, TInvokeKind::Put, "Value"),
        Member<&TPropertyObject::Delete>(0x03001D04, TInvokeKind::Method, "Delete"),
    };
    return kMembers;
  }
  void CheckUsable() const override {
    TDocumentPart::CheckUsable();
    if (fProperty == nullptr || !fProperty->Deleted) return;
    throw Failure(u"Die Eigenschaft " + Quoted(fProperty->Name) + u" ist gelöscht.");
  }
  void CheckChangeable() const {
    if (fProperty == nullptr) throw Failure(u"Hinter dem Ende des Satzes liegt keine Eigenschaft.");
  }

  UnicodeString Name() { return fProperty != nullptr ? fProperty->Name : UnicodeString(); }
  TVariant Value() { return fProperty != nullptr ? fProperty->Value : TVariant(); }
  void PutValue(const TVariant& value) {
    CheckChangeable();
    fProperty->Value = value;
  }
  void Delete() {
    CheckChangeable();
    fSet.Remove(*fProperty);
  }

  TPropertySetData& fSet;
  std::shared_ptr<TPropertyData> fProperty;
};

class TPropertySetObject final : public TDocumentPart {
 public:
  TPropertySetObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document, TPropertySetData& set)
      : TDocumentPart(simulator, "propertyset", std::move(document)), fSet(set) {}

 private:
  std::span<const TMember> Members() const override {
    static constexpr TMember kMembers[] = {
        Member<&TPropertySetObject::Item>(kItem, TInvokeKind::Get, "Item"),
        Member<&TPropertySetObject::AddProperty>(0x03001B03, TInvokeKind::Method, "AddProperty"),
        Member<&TPropertySetObject::Count>(kCount, TInvokeKind::Get, "Count"),
    };
    return kMembers;
  }

  TObject Item(std::int32_t index) {
    const auto& properties = fSet.Properties;
    const bool pastEnd = index > 0 && static_cast<std::size_t>(index) > properties.size();
    if (pastEnd && fDocument->PastEnd() == TPastEnd::Empty) return Part<TPropertyObject>(fSet, nullptr);
    return Part<TPropertyObject>(fSet, properties[Position(index, properties.size())]);
  }
  TObject AddProperty(const TVariant& value, const UnicodeString& name, std::int32_t id) {
    if (id != 0) throw Failure(u"Die Nummer einer neuen Eigenschaft muss 0 sein.");
    if (name.empty()) throw Failure(u"Eine Eigenschaft ohne Namen kann nicht angelegt werden.");
    if (fSet.Has(name) && fDocument->DuplicateProperty() == TDuplicateProperty::Refuse) {
      throw Failure(u"Die Eigenschaft " + Quoted(name) + u" ist schon vorhanden.");
    }
    return Part<TPropertyObject>(fSet, fSet.Add({name, value, {}}));
  }
  std::size_t Count() { return fSet.Properties.size(); }

  TPropertySetData& fSet;
};

class TPropertySetsObject final : public TDocumentPart {
 public:
  TPropertySetsObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document)
      : TDocumentPart(simulator, "propertysets", std::move(document)) {}

 private:
  std::span<const TMember> Members() const override {
    static constexpr TMember kMembers[] = {
        Member<&TPropertySetsObject::Item>(kItem, TInvokeKind::Get, "Item"),
        Member<&TPropertySetsObject::WritePropertiesToFile>(0x03001A04, TInvokeKind::Method,
                                                            "WritePropertiesToFile"),
        Member<&TPropertySetsObject::Count>(kCount, TInvokeKind::Get, "Count"),
    };
    return kMembers;
  }

  TObject Item(std::int32_t index) {
    auto& sets = fDocument->Content().PropertySets;
    return Part<TPropertySetObject>(sets[Position(index, sets.size())]);
  }
  void WritePropertiesToFile() { fDocument->WriteProperties(); }
  std::size_t Count() { return fDocument->Content().PropertySets.size(); }
};

class TReferencedFileObject final : public TDocumentPart {
 public:
  TReferencedFileObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document,
                        TReferenceData& reference)
      : TDocumentPart(simulator, "referencedfile", std::move(document)), fReference(reference) {}

 private:
  std::span<const TMember> Members() const override {
    static constexpr TMember kMembers[] = {
        Member<&TReferencedFileObject::ReplaceReference>(0x03001704, TInvokeKind::Method, "ReplaceReference"),
        Member<&TReferencedFileObject::DisplayName>(0x03001707, TInvokeKind::Get, "DisplayName"),
        Member<&TReferencedFileObject::FullFileName>(0x03001708, TInvokeKind::Get, "FullFileName"),
    };
    return kMembers;
  }

  void ReplaceReference(const UnicodeString& fullFileName) {
    fReference.File = fullFileName;
    fReference.DisplayName.reset();  // it named the old file
  }
  UnicodeString DisplayName() {
    return fReference.DisplayName.value_or(simulator::NameWithoutFolder(fReference.File));
  }
  UnicodeString FullFileName() { return fDocument->FullName(fReference.File); }

  TReferenceData& fReference;
};

class TReferencedFilesObject final : public TDocumentPart {
 public:
  TReferencedFilesObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document)
      : TDocumentPart(simulator, "referencedfiles", std::move(document)) {}

 private:
  std::span<const TMember> Members() const override {
    static constexpr TMember kMembers[] = {
        Member<&TReferencedFilesObject::Item>(kItem, TInvokeKind::Get, "Item"),
        Member<&TReferencedFilesObject::Count>(kCount, TInvokeKind::Get, "Count"),
    };
    return kMembers;
  }

  TObject Item(std::int32_t index) {
    auto& references = fDocument->Content().References;
    return Part<TReferencedFileObject>(references[Position(index, references.size())]);
  }
  std::size_t Count() { return fDocument->Content().References.size(); }
};

class TDocumentObject final : public TDocumentPart {
 public:
  TDocumentObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document)
      : TDocumentPart(simulator, "document", std::move(document)) {}
  ~TDocumentObject() override { TraceRelease(); }

  const std::shared_ptr<TOpenDocument>& Document() const noexcept { return fDocument; }

 private:
  std::span<const TMember> Members() const override {
    static constexpr TMember kMembers[] = {
        Member<&TDocumentObject::DisplayName>(0x03002384, TInvokeKind::Get, "DisplayName"),
        Member<&TDocumentObject::ReferencedFiles>(0x0300238A, TInvokeKind::Get, "ReferencedFiles"),
        Member<&TDocumentObject::PropertySets>(0x03002395, TInvokeKind::Get, "PropertySets"),
        Member<&TDocumentObject::CloseDocument>(0x0300239E, TInvokeKind::Method, "CloseDocument"),
        Member<&TDocumentObject::NeedsMigration>(0x0300250E, TInvokeKind::Get, "NeedsMigration"),
    };
    return kMembers;
  }

  UnicodeString DisplayName() { return fDocument->DisplayName(); }
  TObject ReferencedFiles() { return Part<TReferencedFilesObject>(); }
  TObject PropertySets() { return Part<TPropertySetsObject>(); }
  void CloseDocument() { fDocument->Close(); }
  std::int16_t NeedsMigration() { return fDocument->Content().NeedsMigration.value_or(0); }
};

/// What a server and its save set share; the documents outlive it if a client still holds them.
struct TServerState {
  struct TPendingSave {
    std::shared_ptr<TOpenDocument> Document;
    UnicodeString FileName;
  };

  std::vector<std::shared_ptr<TOpenDocument>> Documents;
  std::vector<TPendingSave> PendingSaves;
  bool Closed = false;

  void CheckOpen() const {
    if (Closed) throw Failure(u"Der Server ist geschlossen.");
  }
};

/// The server's documents that wait to be saved: all references to it see the same ones.
class TSaveSetObject final : public TSimulatedObject {
 public:
  TSaveSetObject(TSimulator& simulator, std::shared_ptr<TServerState> state)
      : TSimulatedObject(simulator, "saveset"), fState(std::move(state)) {}

 private:
  std::span<const TMember> Members() const override {
    static constexpr TMember kMembers[] = {
        Member<&TSaveSetObject::ExecuteSave>(0x0300150A, TInvokeKind::Method, "ExecuteSave"),
        Member<&TSaveSetObject::AddDocumentToSave>(0x03001E07, TInvokeKind::Method, "AddDocumentToSave"),
    };
    return kMembers;
  }
  void CheckUsable() const override { fState->CheckOpen(); }

  void ExecuteSave() {
    // All are checked before the first is written.
    for (const auto& pending : fState->PendingSaves) pending.Document->CheckSavable();
    for (const auto& pending : fState->PendingSaves) pending.Document->SaveAs(pending.FileName);
    fState->PendingSaves.clear();
  }
  void AddDocumentToSave(const TDispatch& object, const UnicodeString& fullFileName) {
    const auto target = std::dynamic_pointer_cast<TDocumentObject>(TargetOf(object));
    const auto document = target != nullptr ? target->Document() : nullptr;
    if (std::ranges::find(fState->Documents, document) == fState->Documents.end()) {
      throw Failure(u"Das Objekt ist kein Dokument dieses Servers.");
    }
    document->CheckOpen();
    fState->PendingSaves.push_back({document, fullFileName});
  }

  std::shared_ptr<TServerState> fState;
};

class TServerObject final : public TSimulatedObject {
 public:
  explicit TServerObject(TSimulator& simulator) : TSimulatedObject(simulator, "server") {}
  ~TServerObject() override { TraceRelease(); }

 private:
  std::span<const TMember> Members() const override {
    static constexpr TMember kMembers[] = {
        Member<&TServerObject::OpenDocument>(0x03002502, TInvokeKind::Method, "OpenDocument"),
        Member<&TServerObject::CloseServer>(0x03002504, TInvokeKind::Method, "CloseServer"),
        Member<&TServerObject::SaveSet>(0x03002506, TInvokeKind::Get, "SaveSet"),
    };
    return kMembers;
  }
  void CheckUsable() const override { fState->CheckOpen(); }

  TObject OpenDocument(const UnicodeString& fullFileName) {
    Simulator().DelayOpening();
    fState->Documents.push_back(std::make_shared<TOpenDocument>(Simulator(), fullFileName));
    return std::make_shared<TDocumentObject>(Simulator(), fState->Documents.back());
  }
  void CloseServer() {
    for (const auto& document : fState->Documents) document->Close();
    fState->PendingSaves.clear();
    fState->Closed = true;
  }
  TObject SaveSet() { return std::make_shared<TSaveSetObject>(Simulator(), fState); }

  std::shared_ptr<TServerState> fState = std::make_shared<TServerState>();
};

}  // namespace

std::shared_ptr<TSimulatedObject> NewServer(TSimulator& simulator) {
  return std::make_shared<TServerObject>(simulator);
}
