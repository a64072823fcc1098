#include "benchmarks/GeneratedAssembly.h"

#include "platform/Path.h"

namespace {

constexpr TextView kRoot = u"C:\\Projekt\\Wurzel-";
constexpr std::int64_t kPartsEach = 332;
constexpr std::int64_t kRowsForThree = 1'000;  // of three sub-assemblies and, once, of the root

std::int64_t NumberIn(TextView digits) {
  std::int64_t number = 0;
  for (const char16_t digit : digits) number = 10 * number + (digit - u'0');
  return number;
}

std::string References(const std::string& front, std::int64_t count, const std::string& extension) {
  std::string list;
  for (std::int64_t i = 0; i < count; ++i) {
    list.append(i == 0 ? "\"" : ",\"").append(front).append(std::to_string(i)).append(extension).append("\"");
  }
  return R"({"references":[)" + list + "]}";
}

}  // namespace

UnicodeString GeneratedAssembly(std::int64_t rows) {
  return UnicodeString(kRoot).append(DecimalText(rows)).append(u".iam");
}

std::string LoadGenerated(const UnicodeString& path) {
  const UnicodeString whole = ChangeFileExtension(path, u"");
  if (whole.starts_with(kRoot)) {
    const std::int64_t rows = NumberIn(TextView(whole).substr(kRoot.size()));
    return References("Baugruppe ", rows / kRowsForThree * 3, ".iam");
  }
  return References(Utf8FromText(FileNameWithoutFolder(whole)) + " Teil ", kPartsEach, ".ipt");
}
