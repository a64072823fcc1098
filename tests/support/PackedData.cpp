#include "tests/support/PackedData.h"

#include <zlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "headless/Machine.h"
#include "zip/ArchiveFile.h"
#include "zip/PackedStream.h"

void AppendPart(std::string& data, const TDataPart& part, std::mt19937& random) {
  constexpr std::string_view kText = "0123456789.,#=()' CARTESIAN_POINT";
  for (std::size_t i = 0; i < part.Size; ++i) {
    const bool isRandom = part.Kind == 'r' || (part.Kind == 'c' && data.size() % 32 < 16);
    char next = static_cast<char>(isRandom ? random() : part.Number);
    if (part.Kind == 'n') next = static_cast<char>(random() & 0x0F);
    if (part.Kind == 't') next = kText[random() % kText.size()];
    if (part.Kind == 'b' && part.Number > 0 && part.Number <= data.size())
      next = data[data.size() - part.Number];
    data += next;
  }
}

std::string Packed(TextView path, std::string_view data, std::size_t block) {
  const std::filesystem::path host = headless::HostPath(path);
  std::filesystem::remove(host);
  TArchiveFile file(path);
  TPackedStream stream(file);
  std::uint64_t begin = 0;
  for (const std::string_view content :
       {data.substr(data.size() - std::min(data.size(), std::size_t{3000})), data}) {
    begin = file.Position();
    stream.Begin();
    for (std::size_t i = 0, count = 0; i < content.size(); i += count) {
      count = content.copy(stream.Room().data(), std::min(block, stream.Room().size()), i);
      stream.Pack(count);
    }
    stream.Finish();
  }
  file.Close();
  std::ifstream stored(host, std::ios::binary);
  stored.seekg(static_cast<std::streamoff>(begin));
  return {std::istreambuf_iterator<char>(stored), {}};
}

std::string Unpacked(std::string packed, std::size_t size) {
  std::string data(size + 1, '\xAA');
  z_stream stream{};
  if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw std::runtime_error("no unpacker");
  stream.next_in = reinterpret_cast<unsigned char*>(packed.data());
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = reinterpret_cast<unsigned char*>(data.data());
  stream.avail_out = static_cast<uInt>(data.size());
  const int result = inflate(&stream, Z_FINISH);
  inflateEnd(&stream);
  if (result != Z_STREAM_END || stream.avail_in != 0) throw std::runtime_error("no whole stream");
  data.resize(stream.total_out);
  return data;
}
