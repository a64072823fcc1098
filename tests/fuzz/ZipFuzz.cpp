// The packed stream gives back what was packed. An input is a recipe, as packing decides by kilobytes: the
// size of the blocks, then in each line a letter and numbers. r is random data, t text, n small numbers,
// c columns, z one byte, b the bytes that far back; any other line is taken as it is.

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "headless/Machine.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/PackedData.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostData = 200'000;
  std::mt19937 random{1};
  std::string content;
  const std::vector<std::string_view> lines = fuzz::Split(fuzz::Bytes(data, size), '\n');
  for (std::size_t i = 1; i < lines.size(); ++i) {
    const std::string line(lines[i]);
    char kind = 0;
    unsigned count = 0, number = 0;
    if (std::sscanf(line.c_str(), "%c %5u %5u", &kind, &count, &number) < 2) content += line;
    AppendPart(content,
               {kind, std::min<std::size_t>(count, kMostData - std::min(kMostData, content.size())), number},
               random);
  }
  const int block = std::atoi(std::string(lines.front()).c_str());
  headless::Machine().Root = std::filesystem::temp_directory_path();
  const UnicodeString file = u"velmora-fuzz-" + DecimalText(getpid());
  const std::string packed = Packed(file, content, static_cast<std::size_t>(std::max(block, 50)));
  std::filesystem::remove(headless::HostPath(file));
  fuzz::Require(Unpacked(packed, content.size()) == content, "what was packed comes back");
  return 0;
}
