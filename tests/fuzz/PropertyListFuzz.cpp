// The property list file against a plain reading of the same bytes.

#include <algorithm>

#include "headless/Machine.h"
#include "inventor/PropertyList.h"
#include "tests/fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string bytes(fuzz::Bytes(data, size));
  headless::Machine().StandardInput = bytes;
  const TPropertyListFile file = ReadPropertyListFile(u"", u"REV");

  bytes = bytes.substr(0, bytes.find('\x1A'));
  std::erase(bytes, '\r');
  std::vector<std::string_view> lines = fuzz::Split(bytes, '\n');
  lines.resize((lines.size() + 1) / 2 * 2);
  UnicodeString index;
  std::vector<UnicodeString> entries;
  for (std::size_t i = 0; i < lines.size(); i += 2) {
    const UnicodeString name = TextFromAnsi(lines[i]), value = TextFromAnsi(lines[i + 1]);
    const UnicodeString front = name + u"=";
    bool isNew = true;
    for (const UnicodeString& entry : entries)
      isNew = isNew && !SameText(entry.substr(0, front.size()), front);
    if (isNew && !value.empty()) entries.push_back(front + value);
    if (name == u"REV") index = value;
  }
  fuzz::Require(file.NewIndex == index, "the new index is what the file says last");
  const std::vector<UnicodeString> names = file.Properties.Names();
  fuzz::Require(names.size() == entries.size(), "the number of entries");
  for (const UnicodeString& name : names) {
    const UnicodeString front = name + u"=";
    const auto first = std::ranges::find_if(
        entries, [&](const auto& entry) { return SameText(entry.substr(0, front.size()), front); });
    fuzz::Require(file.Properties.Has(name), "each entry is found by its name");
    fuzz::Require(file.Properties.Value(name) == first->substr(front.size()), "the first value of a name");
  }
  return 0;
}
