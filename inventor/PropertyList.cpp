#include "inventor/PropertyList.h"

#include "platform/TextFile.h"

std::optional<TPropertyList::TMatch> TPropertyList::Find(TextView name) const {
  for (std::size_t position = 0; position < fEntries.size(); ++position) {
    const TextView entry = fEntries[position];
    for (std::size_t at = entry.find(u'='); at != TextView::npos; at = entry.find(u'=', at + 1)) {
      if (SameText(entry.substr(0, at), name)) return TMatch{position, at + 1};
    }
  }
  return std::nullopt;
}

UnicodeString TPropertyList::Value(TextView name) const {
  const auto match = Find(name);
  return match ? fEntries[match->Position].substr(match->ValueStart) : UnicodeString();
}

UnicodeString TPropertyList::NameAt(int position) const {
  const UnicodeString& entry = fEntries[static_cast<std::size_t>(position)];
  return entry.substr(0, entry.find(u'='));
}

void TPropertyList::Append(TextView name, TextView value) {
  fEntries.push_back(UnicodeString(name).append(u"=").append(value));
}

void TPropertyList::Delete(TextView name) {
  if (const auto match = Find(name)) {
    fEntries.erase(fEntries.begin() + static_cast<std::ptrdiff_t>(match->Position));
  }
}

TPropertyListFile ReadPropertyListFile(TextView fileName, TextView indexProperty) {
  TPropertyListFile result;
  TTextFile file(fileName);
  // The end is looked for after a record: an empty file still gives one, without name and value.
  do {
    const UnicodeString name = file.ReadLine();
    const UnicodeString value = file.ReadLine();
    // Of several records with the same name the first with a value counts ...
    if (!value.empty() && !result.Properties.Contains(name)) result.Properties.Append(name, value);
    // ... but the new index is what the file says last, be it nothing: the host appends a corrected index.
    if (name == indexProperty) result.NewIndex = value;
  } while (!file.AtEnd());
  return result;
}
