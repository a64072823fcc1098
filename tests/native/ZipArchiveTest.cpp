#include "zip/ZipArchive.h"

#include <sys/resource.h>
#include <zlib.h>

#include <csignal>
#include <cstdlib>
#include <random>

#include "tests/support/InputOutputCode.h"
#include "tests/support/PackedData.h"
#include "tests/support/TestMachine.h"
#include "zip/ArchiveFile.h"
#include "zip/Checksum.h"
#include "zip/ZipRecords.h"

namespace {

std::string Data(const std::vector<TDataPart>& parts) {
  static std::mt19937 random{20240315};
  std::string data;
  for (const TDataPart& part : parts) AppendPart(data, part, random);
  return data;
}

/// Random data with runs of zeros of each length.
std::vector<TDataPart> ZeroRuns() {
  std::vector<TDataPart> parts;
  for (std::size_t length = 100; length < 400; ++length) {
    parts.insert(parts.end(), {{'r', 150}, {'z', length}});
  }
  return parts;
}

class ZipArchiveTest : public TMachineTest {
 protected:
  /// Compares the archive with a folder in several readers; `names` are its entries in their order.
  static void CheckByReaders(TextView archive, TextView folder, const std::string& names) {
    WriteFile(u"C:\\Namen.txt", names);
    const auto quoted = [](TextView path) { return " '" + headless::HostPath(path).string() + "'"; };
    const std::string command = "python3 " VELMORA_SOURCE "/benchmarks/packing/check.py" + quoted(archive) +
                                quoted(folder) + quoted(u"C:\\Namen.txt") + " >&2";
    EXPECT_EQ(std::system(command.c_str()), 0);
  }
};

}  // namespace

TEST_F(ZipArchiveTest, PackedStreamsRoundTrip) {
  struct {
    std::vector<TDataPart> Parts;
    std::size_t Most;  ///< bytes of the stream
  } const cases[] = {
      {{}, 2},
      {{{'t', 1}}, 8},
      {{{'r', 1}}, 8},
      {{{'r', 4096}}, 4110},
      {{{'r', 65'536}}, 65'550},
      {{{'r', 300'001}}, 300'050},
      {{{'z', 300'001}}, 2'500},
      {{{'z', 8192}, {'z', 8192, 255}, {'z', 4096}}, 200},  // one value after another
      {{{'n', 300'001}}, 155'000},
      {{{'n', 20'000}, {'b', 9'000, 9'000}, {'r', 9'000}}, 20'800},   // found again
      {{{'t', 20'000}, {'r', 8192}, {'b', 20'000, 28'192}}, 40'000},  // a repeat across a stored run
      {{{'t', 4097}, {'r', 27'903}, {'b', 32'000, 32'000}}, 31'500},  // at the window's far end
      {{{'c', 61'440}}, 36'000},
      {{{'r', 61'440}, {'b', 20'000, 20'000}}, 62'000},  // random, but twice, in two blocks
      {{{'r', 5000}, {'b', 5000, 5000}, {'r', 3000}}, 8500},
      {{{'r', 30'001}, {'b', 120'000, 30'001}}, 34'000},                      // and often
      {{{'r', 100'000}, {'z', 3000}, {'r', 100'000}, {'z', 3000}}, 201'500},  // padding between
      {ZeroRuns(), 60'000},
      {{{'t', 100'000}, {'r', 100}, {'t', 100'000}, {'r', 5000}, {'t', 1}}, 145'000},
  };
  for (const auto& test : cases) {
    const std::string data = Data(test.Parts);
    for (const std::size_t block : {1000U, 4096U, 61'440U}) {
      SCOPED_TRACE(testing::Message() << "case " << &test - cases << ", blocks of " << block);
      const std::string packed = Packed(u"C:\\Strom", data, block);
      EXPECT_TRUE(Unpacked(packed, data.size()) == data);
      if (block < 61'440) continue;
      EXPECT_LE(packed.size(), test.Most);
    }
  }
}

TEST(ChecksumTest, EqualsZlibs) {
  const std::string data = Data({{'r', 5000}});
  const std::span bytes(reinterpret_cast<const unsigned char*>(data.data()), data.size());
  for (const std::size_t size : {0U, 1U, 15U, 16U, 63U, 64U, 65U, 79U, 80U, 127U, 128U, 143U, 4097U}) {
    for (const std::uint32_t before : {0U, 1U, 0xFFFFFFFFU}) {
      EXPECT_EQ(Checksum(before, bytes.subspan(3, size)), ::crc32_z(before, &bytes[3], size)) << size;
    }
  }
}

TEST_F(ZipArchiveTest, IndependentReadersSeeTheFolder) {
  const std::string mixed = Data({{'r', 9999}, {'t', 70'000}, {'r', 300'000}, {'z', 5555}});
  const TextView names[] = {u"&<>\"'%.txt", u"a.ipt",    u"a/b",      u"a/leer/",
                            u"a0",          u"leer.txt", u"Öl ß.idw", u"\U0001F529.ipt"};
  std::string order;
  for (const TextView name : names) {
    const UnicodeString path = u"C:\\Quelle\\" + UnicodeString(name);
    if (name.ends_with(u'/')) {
      std::filesystem::create_directories(headless::HostPath(path));
    } else {
      WriteFile(path, name == u"leer.txt" ? "" : mixed.substr(order.size() * 999));
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

TEST_F(ZipArchiveTest, EntryNamesStayDistinct) {
  WriteFile(u"C:\\a", "");
  const TextView names[] = {u"\xD800", u"\xD801", u"\xDC00\xD800", u"\xFFFD", u"\U0001F529"};
  const std::string entries[] = {"\uFFFDD800", "\uFFFDD801", "\uFFFDDC00\uFFFDD800", "\uFFFDFFFD",
                                 "\U0001F529"};
  TZipArchive archive(u"C:\\Archiv.zip");
  for (const TextView name : names) archive.AddFile(u"C:\\a", name);
  archive.Close();
  const std::string bytes = ReadFile(u"C:\\Archiv.zip");
  for (const std::string& entry : entries) {
    EXPECT_NE(bytes.find(entry + "PK"), std::string::npos) << entry;
  }
}

TEST_F(ZipArchiveTest, FilesMayChangeSizeWhileRead) {
  const std::string data = Data({{'r', 400'000}, {'t', 400'000}});
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
  WriteFile(u"C:\\Quelle\\a", Data({{'r', 900'000}}));
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
