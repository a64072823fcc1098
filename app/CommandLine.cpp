#include "app/CommandLine.h"

namespace {

constexpr char16_t kBlank = u' ';  // this and every character below it separate arguments

/// The argument that begins at `at` or after the blanks there; `at` moves past it.
UnicodeString NextArgument(TextView text, std::size_t& at) {
  while (at < text.size() && text[at] <= kBlank) ++at;
  UnicodeString argument;
  bool quoted = false;
  for (; at < text.size() && (quoted || text[at] > kBlank); ++at) {
    if (text[at] == u'"') {
      quoted = !quoted;
    } else {
      argument.push_back(text[at]);
    }
  }
  return argument;
}

}  // namespace

TCommandLine::TCommandLine(TextView text) {
  std::size_t at = 0;
  NextArgument(text, at);  // the program's name
  for (UnicodeString argument = NextArgument(text, at); !argument.empty();
       argument = NextArgument(text, at)) {
    fArguments.push_back(std::move(argument));
  }
}

UnicodeString TCommandLine::Argument(int number) const {
  return number >= 1 && number <= Count() ? fArguments[static_cast<std::size_t>(number - 1)]
                                          : UnicodeString();
}
