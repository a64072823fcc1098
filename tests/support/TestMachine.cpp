#include "tests/support/TestMachine.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

std::filesystem::path NewFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "velmora-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
  return name;
}

/// Tests that only need some machine, such as the contract tests, run on this one.
class TDefaultMachine : public testing::Environment {
 public:
  void SetUp() override { ResetMachine(fRoot = NewFolder()); }
  void TearDown() override { std::filesystem::remove_all(fRoot); }

 private:
  std::filesystem::path fRoot;
};

const testing::Environment* const kDefaultMachine = testing::AddGlobalTestEnvironment(new TDefaultMachine);

}  // namespace

void ResetMachine(const std::filesystem::path& root) {
  headless::Machine() = headless::TMachine();
  headless::Machine().Root = root;
  headless::Machine().Environment[u"TEMP"] = u"C:\\Temp";
  headless::Machine().Environment[u"APPDATA"] = u"C:\\Users\\Größe\\AppData";
  std::filesystem::create_directories(headless::HostPath(u"C:\\Temp"));
}

TMachineTest::TMachineTest() {
  ResetMachine(NewFolder());
}

TMachineTest::~TMachineTest() {
  std::filesystem::remove_all(headless::Machine().Root);
}

void TMachineTest::WriteFile(TextView path, std::string_view bytes) {
  const std::filesystem::path host = headless::HostPath(path);
  std::filesystem::create_directories(host.parent_path());
  std::ofstream(host, std::ios::binary) << bytes;
}

std::string TMachineTest::ReadFile(TextView path) {
  std::ifstream stream(headless::HostPath(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}
