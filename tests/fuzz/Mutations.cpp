// Runs a fuzz target where there is no libFuzzer: the seeds and inputs made out of them, the same in each
// run.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "tests/fuzz/Fuzz.h"

namespace {

std::string input;

void SaveInput(int) {
  std::ofstream("fuzz-failure", std::ios::binary) << input;
}

void Run() {
  // A copy of the exact size, so that reading past its end shows.
  const std::vector<std::uint8_t> copy(input.begin(), input.end());
  LLVMFuzzerTestOneInput(copy.data(), copy.size());
}

}  // namespace

/// Arguments: how many inputs besides the seeds, and the folder of the seeds.
int main(int argc, char** argv) {
  fuzz::Require(argc == 3, "two arguments");
  std::signal(SIGABRT, SaveInput);  // the sanitizers end so too, with abort_on_error
  std::vector<std::filesystem::path> files(std::filesystem::directory_iterator(argv[2]), {});
  std::ranges::sort(files);
  std::vector<std::string> seeds;
  for (const auto& file : files) {
    std::ifstream stream(file, std::ios::binary);
    seeds.push_back(input = {std::istreambuf_iterator<char>(stream), {}});
    Run();
  }
  std::mt19937 random{20240607};
  const auto number = [&random](std::size_t below) { return random() % below; };
  const auto seed = [&]() -> const std::string& { return seeds[number(seeds.size())]; };
  for (int count = std::atoi(argv[1]); count > 0; --count) {
    input = seed();
    for (std::size_t changes = number(6); changes > 0; --changes) {
      const std::string& other = number(2) == 0 ? std::string(input) : seed();
      const std::string piece = other.substr(number(other.size() + 1), number(number(4) == 0 ? 5000 : 10));
      const std::size_t at = number(input.size() + 1), dropped = number(2) * number(10);
      input.replace(at, dropped, number(4) == 0 ? std::string(1, static_cast<char>(random())) : piece);
    }
    Run();
  }
  return 0;
}
