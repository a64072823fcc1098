// The simulator's documents: one that is written can be read, says the same, and is written the same again.

#include <algorithm>

#include "platform/Error.h"
#include "simulator/DocumentFile.h"
#include "tests/fuzz/Fuzz.h"

namespace {

bool SameProperty(const std::shared_ptr<TPropertyData>& a, const std::shared_ptr<TPropertyData>& b) {
  return a->Name == b->Name && a->Value.Type() == b->Value.Type() && a->Extra == b->Extra;
}

bool SameSet(const TPropertySetData& a, const TPropertySetData& b) {
  return a.Name == b.Name && a.Extra == b.Extra &&
         std::ranges::equal(a.Properties, b.Properties, SameProperty);
}

bool SameReference(const TReferenceData& a, const TReferenceData& b) {
  return a.File == b.File && a.DisplayName == b.DisplayName && a.Extra == b.Extra;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TDocumentFile document;
  try {
    document = simulator::ParseDocument(fuzz::Bytes(data, size));
  } catch (const EError& error) {
    fuzz::Require(error.Kind() == TErrorKind::InputOutput && !error.Message().empty(), "a reason");
    return 0;
  }
  const std::string written = simulator::SerialiseDocument(document);
  const TDocumentFile again = simulator::ParseDocument(written);
  fuzz::Require(std::ranges::equal(again.PropertySets, document.PropertySets, SameSet), "the properties");
  fuzz::Require(std::ranges::equal(again.References, document.References, SameReference), "the references");
  fuzz::Require(again.DisplayName == document.DisplayName && again.Extra == document.Extra, "the document");
  fuzz::Require(simulator::SerialiseDocument(again) == written, "the bytes");
  return 0;
}
