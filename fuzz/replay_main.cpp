// The main program of a fuzz target in builds without libFuzzer: runs the target over each file of the given
// folders, and over every prefix of the files of up to 2,048 bytes, so that fuzz targets build and their corpora
// are replayed in every build.
//
//   TARGET FOLDER...

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "fuzz/fuzz_input.h"

namespace {

constexpr std::size_t kLongestForPrefixes = 2048;

void Replay(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> content{std::istreambuf_iterator<char>(stream), {}};
  const std::size_t first = content.size() <= kLongestForPrefixes ? 0 : content.size();
  for (std::size_t size = first; size <= content.size(); ++size) {
    const std::vector<std::uint8_t> input(content.begin(),
                                          content.begin() + static_cast<std::ptrdiff_t>(size));
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
}

}  // namespace

int main(int argc, char* argv[]) {
  std::size_t files = 0;
  for (int i = 1; i < argc; ++i) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    for (const auto& path : paths) {
      Replay(path);
      ++files;
    }
  }
  if (files == 0) {
    std::cerr << argv[0] << ": expected folders with inputs, found no file\n";
    return 1;
  }
  return 0;
}
