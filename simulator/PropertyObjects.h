#pragma once

#include <cstddef>
#include <memory>

#include "simulator/DocumentObjects.h"

class TPropertySetsObject final : public TDocumentPart {
 public:
  TPropertySetsObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document);

  TVariant Item(std::span<const TVariant> arguments);
  TVariant WritePropertiesToFile(std::span<const TVariant> arguments);
  TVariant Count(std::span<const TVariant> arguments);

 private:
  std::span<const TMember> Members() const override;
};

class TPropertySetObject final : public TDocumentPart {
 public:
  /// `index` counts from 0; sets neither come nor go while a document is open.
  TPropertySetObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document, std::size_t index);

  TVariant Item(std::span<const TVariant> arguments);
  TVariant AddProperty(std::span<const TVariant> arguments);
  TVariant Count(std::span<const TVariant> arguments);

 private:
  std::span<const TMember> Members() const override;
  TPropertySetData& Set() const { return fDocument->Content().PropertySets[fIndex]; }
  TVariant ObjectFor(std::shared_ptr<TPropertyData> property) const;

  std::size_t fIndex;
};

/// A property for as long as it is in its set, or, without one, what a set answers behind its end.
class TPropertyObject final : public TDocumentPart {
 public:
  /// `property` may be null: the nameless, empty property behind the end of a set.
  TPropertyObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document, std::size_t setIndex,
                  std::shared_ptr<TPropertyData> property);

  TVariant Name(std::span<const TVariant> arguments);
  TVariant Value(std::span<const TVariant> arguments);
  TVariant PutValue(std::span<const TVariant> arguments);
  TVariant Delete(std::span<const TVariant> arguments);

 private:
  std::span<const TMember> Members() const override;
  void CheckUsable() const override;
  void CheckChangeable() const;
  TPropertySetData& Set() const { return fDocument->Content().PropertySets[fSetIndex]; }

  std::size_t fSetIndex;
  std::shared_ptr<TPropertyData> fProperty;
};
