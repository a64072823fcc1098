#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "headless/Machine.h"
#include "inventor/PropertyList.h"

namespace {

/// Reading a list of so many records, each with a name of its own: every name is looked for in all before it.
void ReadPropertyList(benchmark::State& state) {
  std::string name = (std::filesystem::temp_directory_path() / "velmora-XXXXXX").string();
  headless::Machine().Root = mkdtemp(name.data());
  std::filesystem::create_directories(headless::HostPath(u"C:\\"));
  std::ofstream file(headless::HostPath(u"C:\\Liste.txt"), std::ios::binary);
  for (std::int64_t i = 0; i < state.range(0); ++i) file << "Eigenschaft " << i << "\r\nWert " << i << "\r\n";
  file.close();
  for (auto _ : state) {
    benchmark::DoNotOptimize(ReadPropertyListFile(u"C:\\Liste.txt", u"INTZUSTAND-EOF"));
  }
  state.SetComplexityN(state.range(0));
  std::filesystem::remove_all(headless::Machine().Root);
}
BENCHMARK(ReadPropertyList)->RangeMultiplier(4)->Range(16, 1024)->Unit(benchmark::kMicrosecond)->Complexity();

}  // namespace
