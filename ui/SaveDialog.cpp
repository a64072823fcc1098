#include "ui/SaveDialog.h"

#include <algorithm>
#include <utility>

#include "platform/Path.h"

namespace {

/// What comes before the next "|"; `rest` loses it.
UnicodeString TakePart(TextView& rest) {
  const std::size_t end = std::min(rest.find(u'|'), rest.size());
  UnicodeString part(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return part;
}

}  // namespace

TextView TSaveDialog::Extension() const {
  const TextView extension = FileExtension(DefaultExt);
  return extension.substr(std::min<std::size_t>(extension.size(), 1));
}

std::vector<TSaveDialog::TFilter> TSaveDialog::Filters() const {
  std::vector<TFilter> filters;
  for (TextView rest = Filter; !rest.empty();) {
    UnicodeString description = TakePart(rest);
    filters.push_back({std::move(description), TakePart(rest)});
  }
  return filters;
}

bool TSaveDialog::Execute(const TForm& owner) {
  std::optional<UnicodeString> chosen = Ask(owner);
  if (!chosen) return false;
  const TextView extension = FileExtension(DefaultExt);
  // Where extensions are hidden the dialog shows the proposal without its own, and may answer so: "4711.01".
  const bool shortened = UnicodeString(FileNameWithoutFolder(*chosen)).append(extension) == FileName;
  // The system's dialog sees to it only where the filter's pattern suits it.
  if (shortened || FileExtension(*chosen).empty()) chosen->append(extension);
  FileName = std::move(*chosen);
  return true;
}
