#include "inventor/PropertyList.h"

#include "platform/TextFile.h"

namespace {

bool HasName(TextView entry, TextView name) {
  return entry.size() > name.size() && entry[name.size()] == u'=' &&
         SameText(entry.substr(0, name.size()), name);
}

}  // namespace

std::size_t TPropertyList::Find(TextView name) const {
  const auto [index, isNew] = fIndexes.try_emplace(name.size());
  if (isNew) {
    for (std::size_t position = 0; position < fEntries.size(); ++position) {
      Enter(index->second, name.size(), position);
    }
  }
  const auto candidates = index->second.find(SameTextKey(name));
  if (candidates == index->second.end()) return kNone;
  for (const std::size_t position : candidates->second) {
    if (HasName(fEntries[position], name)) return position;
  }
  return kNone;
}

void TPropertyList::Enter(TIndex& index, std::size_t length, std::size_t position) const {
  const TextView entry = fEntries[position];
  if (entry.size() <= length || entry[length] != u'=') return;
  index[SameTextKey(entry.substr(0, length))].push_back(position);
}

UnicodeString TPropertyList::Value(TextView name) const {
  const std::size_t position = Find(name);
  return position != kNone ? fEntries[position].substr(name.size() + 1) : UnicodeString();
}

std::vector<UnicodeString> TPropertyList::Names() const {
  std::vector<UnicodeString> names;
  for (const UnicodeString& entry : fEntries) {
    if (!entry.empty()) names.push_back(entry.substr(0, entry.find(u'=')));
  }
  return names;
}

void TPropertyList::Append(TextView name, TextView value) {
  fEntries.push_back(UnicodeString(name).append(u"=").append(value));
  for (auto& [length, index] : fIndexes) Enter(index, length, fEntries.size() - 1);
}

void TPropertyList::Delete(TextView name) {
  if (const std::size_t position = Find(name); position != kNone) fEntries[position].clear();
}

TPropertyListFile ReadPropertyListFile(TextView fileName, TextView indexProperty) {
  TPropertyListFile result;
  TTextFile file(fileName);
  // The end is checked after each record: an empty file still gives one, without name and value.
  do {
    const UnicodeString name = file.ReadLine();
    const UnicodeString value = file.ReadLine();
    // Of several records with the same name the first one with a value counts ...
    if (!value.empty() && !result.Properties.Has(name)) result.Properties.Append(name, value);
    // ... but the new index is the last one, even if it is empty. Deliberately the opposite.
    if (name == indexProperty) result.NewIndex = value;
  } while (!file.AtEnd());
  return result;
}
