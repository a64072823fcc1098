#include "inventor/PropertyList.h"

#include <algorithm>

#include "platform/TextFile.h"

namespace {

bool HasName(TextView entry, TextView name) {
  return entry.size() > name.size() && entry[name.size()] == u'=' &&
         SameText(entry.substr(0, name.size()), name);
}

}  // namespace

int TPropertyList::Find(TextView name) const {
  const auto found =
      std::ranges::find_if(fEntries, [name](const UnicodeString& entry) { return HasName(entry, name); });
  return found != fEntries.end() ? static_cast<int>(found - fEntries.begin()) : -1;
}

UnicodeString TPropertyList::Value(TextView name) const {
  const int position = Find(name);
  return position >= 0 ? fEntries[static_cast<std::size_t>(position)].substr(name.size() + 1)
                       : UnicodeString();
}

UnicodeString TPropertyList::NameAt(int position) const {
  const UnicodeString& entry = fEntries[static_cast<std::size_t>(position)];
  return entry.substr(0, entry.find(u'='));
}

void TPropertyList::Append(TextView name, TextView value) {
  fEntries.push_back(UnicodeString(name).append(u"=").append(value));
}

void TPropertyList::Delete(int position) {
  fEntries.erase(fEntries.begin() + position);
}

TPropertyListFile ReadPropertyListFile(TextView fileName, TextView indexProperty) {
  TPropertyListFile result;
  TTextFile file(fileName);
  // The end is looked for after a record: an empty file still gives one, without name and value.
  do {
    const UnicodeString name = file.ReadLine();
    const UnicodeString value = file.ReadLine();
    // Of several records with the same name the first with a value counts ...
    if (!value.empty() && result.Properties.Find(name) < 0) result.Properties.Append(name, value);
    // ... but the new index is what the file says last, be it nothing. Deliberately the opposite.
    if (name == indexProperty) result.NewIndex = value;
  } while (!file.AtEnd());
  return result;
}
