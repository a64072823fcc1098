// The property list file against a plain reading of the same bytes.

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
  fuzz::Require(file.Properties.Count() == static_cast<int>(entries.size()), "the number of entries");
  for (int i = 0; i < file.Properties.Count(); ++i) {
    const UnicodeString name = file.Properties.NameAt(i);
    const int found = file.Properties.Find(name);
    fuzz::Require(found >= 0 && found <= i, "the first entry of a name is found");
    const UnicodeString& entry = entries[static_cast<std::size_t>(found)];
    fuzz::Require(file.Properties.Value(name) == entry.substr(name.size() + 1), "its value");
  }
  return 0;
}
