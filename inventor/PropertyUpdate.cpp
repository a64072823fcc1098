#include "inventor/PropertyUpdate.h"

#include "inventor/ApprenticeServer.h"
#include "inventor/PropertyList.h"

namespace {

/// One update of one open document.
class TPropertyUpdate {
 public:
  TPropertyUpdate(const TDocument& document, TPropertyList& list, const TIndexSettings& settings)
      : fDocument(document), fList(list), fSettings(settings) {}

  /// Empties and refills the text properties; removes from the list what it has written.
  void UpdateExisting();
  /// Creates what is left in the list and returns how many properties that were.
  std::int32_t CreateMissing();
  const UnicodeString& OldIndex() const { return fOldIndex; }

 private:
  TPropertySet Set() const { return fDocument.CustomProperties(); }
  TProperty Property(std::int32_t index) const { return fDocument.CustomProperty(index); }
  void UpdateOne(std::int32_t index);
  void Refill(std::int32_t index);

  const TDocument& fDocument;
  TPropertyList& fList;
  const TIndexSettings& fSettings;
  UnicodeString fOldIndex;
};

void TPropertyUpdate::UpdateExisting() {
  // The count is not adjusted when a hint is deleted: the property that moves up is skipped, and the last
  // pass asks for a position that the set no longer has. This is deliberate: the component's answer decides
  // whether the update continues, and an update that it refuses leaves the file unchanged.
  const std::int32_t count = Set().Count();
  for (std::int32_t done = 0; done < count; ++done) {
    const std::int32_t index = done + 1;
    if (Property(index).Value().IsText()) UpdateOne(index);
  }
}

void TPropertyUpdate::UpdateOne(std::int32_t index) {
  if (Property(index).Name() == fSettings.IndexProp) fOldIndex = Property(index).Value().AsText();
  // The value before the change. Nothing compares it: updates are deliberately not counted.
  static_cast<void>(Property(index).Value());
  // Emptied first: a property that the list does not name ends up empty.
  Property(index).Value(TVariant::Text({}));
  Refill(index);
  if (fSettings.AutoRemoveHint && Property(index).Name() == kIndexHintName) Property(index).Delete();
}

void TPropertyUpdate::Refill(std::int32_t index) {
  const UnicodeString name = Property(index).Name();
  if (!fList.Has(name)) return;
  Property(index).Value(TVariant::Text(fList.Value(name)));
  fList.Delete(name);
}

std::int32_t TPropertyUpdate::CreateMissing() {
  const std::vector<UnicodeString> names = fList.Names();
  for (const UnicodeString& name : names) {
    Set().AddProperty(TVariant::Text(fList.Value(name)), name, 0);
  }
  return static_cast<std::int32_t>(names.size());
}

}  // namespace

std::int32_t UpdateProperties(const UnicodeString& fileName, const UnicodeString& listFileName,
                              const TIndexSettings& settings) {
  TPropertyListFile list = ReadPropertyListFile(listFileName, settings.IndexProp);
  const TApprenticeServer server;
  const TDocument document = server.OpenDocument(fileName);

  TPropertyUpdate update(document, list.Properties, settings);
  update.UpdateExisting();
  std::int32_t created = update.CreateMissing();
  if (AddIndexHint(document, update.OldIndex(), list.NewIndex, settings.IndexHint)) ++created;

  document.PropertySets().WritePropertiesToFile();
  document.CloseDocument();
  return created;
}
