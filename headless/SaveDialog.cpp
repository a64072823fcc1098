#include "headless/Machine.h"
#include "ui/NativeSaveDialog.h"

std::optional<UnicodeString> AskForSaveName(const TNativeWindow&, const TSaveRequest& request) {
  headless::ThrowIfFails("SaveDialog");
  headless::TMachine& machine = headless::Machine();
  std::string filters;
  for (const TFileFilter& filter : request.Filters) {
    filters += " " + Utf8FromText(filter.Description) + "=" + Utf8FromText(filter.Pattern);
  }
  machine.Record("save dialog \"" + Utf8FromText(request.Title) + "\" " + Utf8FromText(request.Folder) +
                 " | " + Utf8FromText(request.FileName) + " |" + filters + " | " +
                 Utf8FromText(request.Extension));
  if (machine.SaveAnswers.empty()) return std::nullopt;
  std::optional<UnicodeString> answer = machine.SaveAnswers.front();
  machine.SaveAnswers.pop_front();
  return answer;
}
