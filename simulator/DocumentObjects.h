#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "simulator/OpenDocument.h"
#include "simulator/SimulatedObject.h"

/// An object that belongs to a document: keeps its contents alive and is of no use when it has been closed.
class TDocumentPart : public TSimulatedObject {
 protected:
  TDocumentPart(TSimulator& simulator, std::string_view className, std::shared_ptr<TOpenDocument> document)
      : TSimulatedObject(simulator, className), fDocument(std::move(document)) {}

  void CheckUsable() const override { fDocument->CheckOpen(); }

  std::shared_ptr<TOpenDocument> fDocument;
};

class TDocumentObject final : public TDocumentPart {
 public:
  TDocumentObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document);
  ~TDocumentObject() override { TraceRelease(); }

  const std::shared_ptr<TOpenDocument>& Document() const noexcept { return fDocument; }

  TVariant DisplayName(std::span<const TVariant> arguments);
  TVariant ReferencedFiles(std::span<const TVariant> arguments);
  TVariant PropertySets(std::span<const TVariant> arguments);
  TVariant CloseDocument(std::span<const TVariant> arguments);
  TVariant NeedsMigration(std::span<const TVariant> arguments);

 private:
  std::span<const TMember> Members() const override;
};

class TReferencedFilesObject final : public TDocumentPart {
 public:
  TReferencedFilesObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document);

  TVariant Item(std::span<const TVariant> arguments);
  TVariant Count(std::span<const TVariant> arguments);

 private:
  std::span<const TMember> Members() const override;
};

class TReferencedFileObject final : public TDocumentPart {
 public:
  /// `index` counts from 0; references neither come nor go while a document is open.
  TReferencedFileObject(TSimulator& simulator, std::shared_ptr<TOpenDocument> document, std::size_t index);

  TVariant ReplaceReference(std::span<const TVariant> arguments);
  TVariant DisplayName(std::span<const TVariant> arguments);
  TVariant FullFileName(std::span<const TVariant> arguments);

 private:
  std::span<const TMember> Members() const override;

  std::size_t fIndex;
};

namespace simulator {

constexpr std::int32_t kItem = 0;  // DISPID_VALUE
constexpr std::int32_t kCount = 0x7F000006;

/// A collection's index as a position from 0. Throws when nothing lies there.
std::size_t Position(const TVariant& index, std::size_t count);
TVariant CountOf(std::size_t count);

}  // namespace simulator
