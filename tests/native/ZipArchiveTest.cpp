#include "zip/ZipArchive.h"

#include <sys/resource.h>
#include <zlib.h>

#include <csignal>
#include <cstdlib>
#include <random>

#include "tests/support/InputOutputCode.h"
#include "tests/support/TestMachine.h"
#include "zip/ArchiveFile.h"
#include "zip/PackedStream.h"
#include "zip/ZipRecords.h"

namespace {

/// Data by a recipe of letters and sizes: r random, t text, z zeros, c columns, b the bytes that stand so far
/// back once more.
class TRecipe {
 public:
  struct TPart {
    char Kind;
    std::size_t Size;
    std::size_t Back = 0;
  };

  std::string Data(const std::vector<TPart>& parts) {
    std::string data;
    for (const TPart& part : parts) {
      for (std::size_t i = 0; i < part.Size; ++i) data += Next(part, data);
    }
    return data;
  }
  std::size_t Number(std::size_t below) { return fRandom() % below; }

 private:
  char Next(const TPart& part, const std::string& data) {
    switch (part.Kind) {
      case 'r':
        return static_cast<char>(fRandom());
      case 't':
        return "0123456789.,#=()' CARTESIAN_POINT"[fRandom() % 33];
      case 'b':
        return data.at(data.size() - part.Back);
      case 'c':  // columns: sixteen random bytes, sixteen zeros
        return static_cast<char>(data.size() % 32 < 16 ? fRandom() : 0);
      default:
        return '\0';
    }
  }

  std::mt19937 fRandom{20240315};
};

class ZipArchiveTest : public TMachineTest {
 protected:
  /// The packed stream of `data`, handed over in blocks of the given size.
  static std::string Packed(std::string_view data, std::size_t block) {
    std::filesystem::remove(headless::HostPath(u"C:\\Strom"));
    TArchiveFile file(u"C:\\Strom");
    TPackedStream stream(file);
    const std::string_view another = data.substr(data.size() - std::min<std::size_t>(data.size(), 3000));
    std::uint64_t begin = 0;
    for (const std::string_view content : {another, data}) {
      begin = file.Position();
      stream.Begin();
      for (std::size_t i = 0; i < content.size(); i += block) {
        const std::size_t count = content.copy(stream.Room().data(), block, i);
        stream.Pack(count);
      }
      stream.Finish();
    }
    file.Close();
    return ReadFile(u"C:\\Strom").substr(begin);
  }

  static std::string Unpacked(std::string packed, std::size_t size) {
    std::string data(size + 1, '\xAA');
    z_stream stream{};
    EXPECT_EQ(inflateInit2(&stream, -MAX_WBITS), Z_OK);
    stream.next_in = reinterpret_cast<unsigned char*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<unsigned char*>(data.data());
    stream.avail_out = static_cast<uInt>(data.size());
    EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END);
    EXPECT_EQ(stream.avail_in, 0U) << "nothing stands behind the stream";
    data.resize(stream.total_out);
    inflateEnd(&stream);
    return data;
  }

  /// Compares the archive with a folder in several readers; `names` are its entries in their order.
  static void CheckByReaders(TextView archive, TextView folder, const std::string& names) {
    WriteFile(u"C:\\Namen.txt", names);
    const auto quoted = [](TextView path) { return " '" + headless::HostPath(path).string() + "'"; };
    const std::string command = "python3 " VELMORA_SOURCE "/scripts/packing/check.py" + quoted(archive) +
                                quoted(folder) + quoted(u"C:\\Namen.txt") + " >&2";
    EXPECT_EQ(std::system(command.c_str()), 0);
  }
};

}  // namespace

TEST_F(ZipArchiveTest, PackedStreamsRoundTrip) {
  struct {
    std::vector<TRecipe::TPart> Parts;
    std::size_t Most;  ///< bytes of the stream
  } const cases[] = {
      {{}, 2},
      {{{'t', 1}}, 8},
      {{{'r', 1}}, 8},
      {{{'r', 4096}}, 4110},
      {{{'r', 65'536}}, 65'550},
      {{{'r', 300'001}}, 300'050},
      {{{'z', 300'001}}, 500},
      {{{'t', 20'000}, {'r', 8192}, {'b', 20'000, 28'192}}, 40'000},  // a repeat across a stored run
      {{{'t', 4097}, {'r', 27'903}, {'b', 32'000, 32'000}}, 31'500},  // at the window's far end
      {{{'c', 61'440}}, 36'000},
      {{{'r', 20'000}, {'b', 20'000, 20'000}}, 22'000},  // random, but twice
      {{{'r', 5000}, {'b', 5000, 5000}, {'r', 3000}}, 8500},
      {{{'r', 30'001}, {'b', 120'000, 30'001}}, 34'000},                      // and often
      {{{'r', 100'000}, {'z', 3000}, {'r', 100'000}, {'z', 3000}}, 201'500},  // padding between
      {{{'t', 100'000}, {'r', 100}, {'t', 100'000}, {'r', 5000}, {'t', 1}}, 145'000},
  };
  TRecipe recipe;
  for (const auto& test : cases) {
    const std::string data = recipe.Data(test.Parts);
    for (const std::size_t block : {1000U, 4096U, 61'440U}) {
      SCOPED_TRACE(testing::Message() << "case " << &test - cases << ", blocks of " << block);
      const std::string packed = Packed(data, block);
      EXPECT_TRUE(Unpacked(packed, data.size()) == data);
      if (block < 61'440) continue;
      EXPECT_LE(packed.size(), test.Most);
    }
  }
}

TEST_F(ZipArchiveTest, IndependentReadersSeeTheFolder) {
  TRecipe recipe;
  const std::string mixed = recipe.Data({{'r', 9999}, {'t', 70'000}, {'r', 300'000}, {'z', 5555}});
  const TextView names[] = {u"&<>\"'%.txt", u"a.ipt",    u"a/b",      u"a/leer/",
                            u"a0",          u"leer.txt", u"Öl ß.idw", u"\U0001F529.ipt"};
  std::string order;
  for (const TextView name : names) {
    const UnicodeString path = u"C:\\Quelle\\" + UnicodeString(name);
    if (name.ends_with(u'/')) {
      std::filesystem::create_directories(headless::HostPath(path));
    } else {
      WriteFile(path, name == u"leer.txt" ? "" : mixed.substr(recipe.Number(9000)));
    }
    order += Utf8FromText(name) + "\n";
  }
  const auto link = [](const char* target, TextView name) {
    std::filesystem::create_symlink(target, headless::HostPath(name));
  };
  link("..", u"C:\\Quelle\\kreis");
  link("a.ipt", u"C:\\Quelle\\a\\leer\\verweis");

  TZipArchive archive(u"C:\\Archiv.zip");
  archive.AddContents(u"C:\\Quelle");
  archive.Close();
  CheckByReaders(u"C:\\Archiv.zip", u"C:\\Quelle", order);
}

TEST_F(ZipArchiveTest, FilesMayChangeSizeWhileRead) {
  TRecipe recipe;
  const std::string data = recipe.Data({{'r', 400'000}, {'t', 400'000}});
  for (const std::size_t size : {300'000U, 900'000U}) {
    WriteFile(u"C:\\Quelle\\a", data);
    const std::filesystem::path host = headless::HostPath(u"C:\\Quelle\\a");
    const auto modified = std::filesystem::last_write_time(host);
    std::filesystem::remove(headless::HostPath(u"C:\\Archiv.zip"));
    int blocks = 0;
    TZipArchive archive(u"C:\\Archiv.zip", [&] {
      if (++blocks == 1) std::filesystem::resize_file(host, size);
    });
    archive.AddContents(u"C:\\Quelle");
    archive.Close();
    EXPECT_GE(blocks, 2);
    WriteFile(u"C:\\Quelle\\a", data.substr(0, size));
    std::filesystem::last_write_time(host, modified);
    CheckByReaders(u"C:\\Archiv.zip", u"C:\\Quelle", "a\n");
  }
}

TEST_F(ZipArchiveTest, ErrorsCarrySystemCode) {
  WriteFile(u"C:\\Quelle\\a", TRecipe().Data({{'r', 900'000}}));
  TZipArchive archive(u"C:\\Archiv.zip");
  EXPECT_EQ(InputOutputCode([&] { archive.AddFile(u"C:\\Quelle\\fehlt", u"a"); }), 2);
  EXPECT_EQ(InputOutputCode([&] { archive.AddContents(u"C:\\fehlt"); }), 2);
  EXPECT_EQ(InputOutputCode([&] { archive.AddFile(u"C:\\Quelle\\a", UnicodeString(32'768, u'ä')); }),
            kInvalidFileName);
  EXPECT_EQ(InputOutputCode([] { TZipArchive(u"C:\\Archiv.zip"); }), EEXIST);

  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit full{500'000, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  EXPECT_EQ(InputOutputCode([&] { archive.AddFile(u"C:\\Quelle\\a", u"a"); }), EFBIG);
  setrlimit(RLIMIT_FSIZE, &before);
}

TEST_F(ZipArchiveTest, PatchSpansBufferAndFile) {
  TArchiveFile file(u"C:\\Archiv");
  file.Write(std::string(65'540, 'a'));
  file.Patch(65'530, "0123456789");
  file.Close();
  EXPECT_EQ(ReadFile(u"C:\\Archiv"), std::string(65'530, 'a') + "0123456789");
}

TEST_F(ZipArchiveTest, UsesZip64WhereNumbersDoNotFit) {
  constexpr std::uint64_t kMost = 0xFFFFFFFE;
  struct {
    std::uint64_t Packed, Size, Position;
    bool Long;
    std::size_t Local, Directory;  ///< lengths
  } const entries[] = {
      {kMost, kMost, kMost, false, 31, 47},
      {9, kMost + 1, 9, true, 51, 59},
      {kMost + 2, kMost + 1, 9, true, 51, 67},
      {9, 9, kMost + 1, false, 31, 59},
  };
  const auto number = [](const std::string& record, std::size_t at) {
    std::uint64_t value = 0;
    record.copy(reinterpret_cast<char*>(&value), sizeof value, at);
    return value;
  };
  for (const auto& test : entries) {
    const TZipEntry entry{"a", {}, 0, test.Packed, test.Size, test.Position, test.Long};
    EXPECT_EQ(zip_records::LocalHeader(entry).size(), test.Local);
    EXPECT_EQ(zip_records::DirectoryHeader(entry).size(), test.Directory);
    if (!test.Long) continue;
    EXPECT_EQ(number(zip_records::LocalHeader(entry), 35), test.Size);
    EXPECT_EQ(number(zip_records::DirectoryHeader(entry), 51), test.Size);
  }
  EXPECT_EQ(zip_records::DirectoryEnd(65'535, kMost, kMost).size(), 22U);
  EXPECT_EQ(zip_records::LocalHeader({"a", {1601, 1, 1}}).substr(10, 4), std::string("\0\0\x21\0", 4));
  const std::string end = zip_records::DirectoryEnd(65'536, 5, 7);
  EXPECT_EQ(end.size(), 98U);
  EXPECT_EQ(number(end, 4), 44U) << "what follows of its first record";
  EXPECT_EQ(number(end, 64), 12U) << "where that begins";
  EXPECT_EQ(zip_records::DirectoryEnd(1, kMost + 1, 0).size(), 98U);
}
