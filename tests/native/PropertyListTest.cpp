#include "inventor/PropertyList.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/Error.h"
#include "tests/support/TestMachine.h"

namespace {

constexpr TextView kFile = u"C:\\Liste ä.txt";

/// The entries as "name=value", each value looked up by its name.
std::vector<std::string> Entries(const TPropertyList& list) {
  std::vector<std::string> entries;
  for (const UnicodeString& name : list.Names()) {
    entries.push_back(Utf8FromText(name + u"=" + list.Value(name)));
  }
  return entries;
}

class PropertyListTest : public TMachineTest {};

}  // namespace

TEST_F(PropertyListTest, ReadsRecordsOfTwoLines) {
  struct {
    std::string Bytes;
    std::vector<std::string> Entries;
    TextView NewIndex;
  } const cases[] = {
      {"", {}, u""},
      {"A\r\n1\r\nB\n2\n", {"A=1", "B=2"}, u""},
      {"A\n" + std::string(9999, 'v'), {"A=" + std::string(9999, 'v')}, u""},  // longer than any buffer
      {"A\n1\nREV\n", {"A=1"}, u""},
      {"REV\nb\nREV\n\n", {"REV=b"}, u""},            // the last index counts, also an empty one,
      {"REV\nb\nrev\nc\nREV\nd\n", {"REV=b"}, u"d"},  // but the first value of a name, whatever its case
      {"rev\nc\n", {"rev=c"}, u""},
      {"A\n\na\n2\n", {"a=2"}, u""},  // an empty value takes no place
      {"\n\nA\n1\n", {"A=1"}, u""},   // blank lines belong to the pairing
      {"\nv\n", {"=v"}, u""},
      {"A\rB\n1\r2\r\r\n", {"AB=12"}, u""},  // a CR that ends no line is dropped
      {"A\n1\n\x1A\nB\n2\n", {"A=1"}, u""},  // Ctrl-Z ends the file
      {"A\n1\x1A 2\nB\n2\n", {"A=1"}, u""},
      {"Gr\xF6\xDF"
       "e\n5 \x80\n",
       {"Größe=5 €"},
       u""},
      {"\xEF\xBB\xBFREV\nb\n", {"ï»¿REV=b"}, u""},  // no byte-order mark is known
      {"A=B\nv\n", {"A=B=v"}, u""},
      {"A=B\nv\nA\nx\n", {"A=B=v"}, u""},  // "A" is found in the entry "A=B=v"
      {"A\nx\nA=B\nv\n", {"A=x", "A=x"}, u""},
  };
  for (const auto& test : cases) {
    WriteFile(kFile, test.Bytes);
    const TPropertyListFile file = ReadPropertyListFile(kFile, u"REV");
    EXPECT_EQ(Entries(file.Properties), test.Entries) << test.Bytes;
    EXPECT_EQ(file.NewIndex, test.NewIndex) << test.Bytes;
  }
}
