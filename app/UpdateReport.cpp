#include "app/UpdateReport.h"

namespace {

UnicodeString CreatedLine(std::int32_t created) {
  if (created < 0) return {};
  if (created == 0) return u" keine neue Properties angelegt...";
  if (created == 1) return u" ein Propertie neu angelegt...";
  return DecimalText(created) + u" Properties neu angelegt...";
}

/// With its carriage return. The plural shows the number of created properties, not of updated ones, and
/// stays so deliberately: as updates are not counted, that text never reaches the screen.
UnicodeString UpdatedLine(std::int32_t created, std::int32_t updated) {
  if (updated < 0) return {};
  if (updated == 0) return u"\rkeine Properties aktualisiert...";
  if (updated == 1) return u"\r ein Propertie aktualisiert...";
  return u"\r" + DecimalText(created) + u" Properties aktualisiert...";
}

}  // namespace

UnicodeString UpdateReport(std::int32_t created, std::int32_t updated) {
  return CreatedLine(created) + UpdatedLine(created, updated);
}
