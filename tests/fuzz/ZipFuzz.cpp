// The packed stream gives back what was packed. An input is a recipe, as packing decides by kilobytes: the
// size of the blocks, then in each line a letter and numbers. r is random data, t text, c columns, z one
// byte, b the bytes that stand so far back; any other line stands for itself.

#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

#include "headless/Machine.h"
#include "tests/fuzz/Fuzz.h"
#include "zip/PackedStream.h"

namespace {

constexpr std::size_t kMostData = 200'000;

void AppendPart(std::string& data, const std::string& line, std::mt19937& random) {
  char kind = 0;
  unsigned size = 0, number = 0;
  if (std::sscanf(line.c_str(), "%c %5u %5u", &kind, &size, &number) < 2) data += line;
  for (; size > 0 && data.size() < kMostData; --size) {
    const bool isRandom = kind == 'r' || (kind == 'c' && size % 32 < 16);
    char next = static_cast<char>(isRandom ? random() : number);
    if (kind == 't') next = "0123456789.,#=()' CARTESIAN_POINT"[random() % 33];
    if (kind == 'b' && number > 0 && number <= data.size()) next = data[data.size() - number];
    data += next;
  }
}

std::string Packed(std::string_view data, std::size_t block) {
  headless::Machine().Root = std::filesystem::temp_directory_path();
  const UnicodeString name = u"velmora-fuzz-" + DecimalText(getpid());
  TArchiveFile file(name);
  TPackedStream stream(file);
  stream.Begin();
  for (std::size_t i = 0; i < data.size(); i += block)
    stream.Pack(data.copy(stream.Room().data(), block = std::min(block, stream.Room().size()), i));
  stream.Finish();
  file.Close();
  std::ifstream stored(headless::HostPath(name), std::ios::binary);
  std::filesystem::remove(headless::HostPath(name));
  return {std::istreambuf_iterator<char>(stored), {}};
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::mt19937 random{1};
  std::string content;
  const std::vector<std::string_view> lines = fuzz::Split(fuzz::Bytes(data, size), '\n');
  for (std::size_t i = 1; i < lines.size(); ++i) AppendPart(content, std::string(lines[i]), random);
  const int block = std::atoi(std::string(lines.front()).c_str());
  std::string packed = Packed(content, static_cast<std::size_t>(std::max(block, 50)));

  std::string unpacked(content.size() + 1, '\xAA');
  z_stream stream{};
  fuzz::Require(inflateInit2(&stream, -MAX_WBITS) == Z_OK, "an unpacker");
  stream.next_in = reinterpret_cast<unsigned char*>(packed.data());
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = reinterpret_cast<unsigned char*>(unpacked.data());
  stream.avail_out = static_cast<uInt>(unpacked.size());
  fuzz::Require(inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_in == 0, "the stream is whole");
  unpacked.resize(stream.total_out);
  inflateEnd(&stream);
  fuzz::Require(unpacked == content, "what was packed comes back");
  return 0;
}
