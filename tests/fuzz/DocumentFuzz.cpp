// The simulator's documents: one that is written can be read, and is written the same again.

#include "platform/Error.h"
#include "simulator/DocumentFile.h"
#include "tests/fuzz/Fuzz.h"

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
  fuzz::Require(again.PropertySets.size() == document.PropertySets.size(), "the property sets");
  fuzz::Require(again.References.size() == document.References.size(), "the references");
  fuzz::Require(simulator::SerialiseDocument(again) == written, "the bytes");
  return 0;
}
