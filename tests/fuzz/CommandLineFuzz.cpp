// Arguments hold no quotes, and the same arguments in quotes are the same arguments.

#include "app/CommandLine.h"
#include "tests/fuzz/Fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const UnicodeString text = fuzz::AnyText(fuzz::Bytes(data, size));
  const TCommandLine line(text);
  UnicodeString quoted = u"\"C:\\Pro gramme\\v.exe\"";
  for (int i = 1; i <= line.Count(); ++i) quoted += u" \"" + line.Argument(i) + u"\"";
  const TCommandLine again(quoted);
  fuzz::Require(again.Count() == line.Count(), "the number of arguments");
  for (int i = 1; i <= line.Count(); ++i) {
    const UnicodeString argument = line.Argument(i);
    fuzz::Require(!argument.empty() && argument.find(u'"') == UnicodeString::npos, "an argument's form");
    fuzz::Require(again.Argument(i) == argument, "an argument");
    // Without quotes around them, blanks end arguments.
    fuzz::Require(text.find(u'"') != TextView::npos || text.find(argument) != TextView::npos, "its place");
  }
  return 0;
}
