#include "ui/SaveDialog.h"

#include <algorithm>
#include <utility>

#include "platform/Path.h"
#include "ui/Form.h"
#include "ui/NativeSaveDialog.h"

namespace {

/// What stands before the next "|"; `rest` loses it.
UnicodeString TakePart(TextView& rest) {
  const std::size_t end = std::min(rest.find(u'|'), rest.size());
  UnicodeString part(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return part;
}

std::vector<TFileFilter> Filters(TextView rest) {
  std::vector<TFileFilter> filters;
  while (!rest.empty()) {
    UnicodeString description = TakePart(rest);
    filters.push_back({std::move(description), TakePart(rest)});
  }
  return filters;
}

}  // namespace

bool TSaveDialog::Execute(const TForm& owner) {
  const TextView extension = FileExtension(DefaultExt);
  const TSaveRequest request{
      .Title = Title,
      .Folder = InitialDir,
      .FileName = FileName,
      .Extension = UnicodeString(extension.substr(std::min<std::size_t>(extension.size(), 1))),
      .Filters = Filters(Filter)};
  std::optional<UnicodeString> chosen = AskForSaveName(owner.Window(), request);
  if (!chosen) return false;
  // The system's dialog sees to it only where the filter's pattern suits it.
  if (FileExtension(*chosen).empty()) chosen->append(extension);
  FileName = std::move(*chosen);
  return true;
}
