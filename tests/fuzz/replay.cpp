// Gives a fuzzing target every file of some folders, and every beginning of each, as an ordinary test.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::uint8_t> ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void Replay(const std::vector<std::uint8_t>& bytes) {
  // In memory of exactly this size, so that the sanitizer sees a read beyond the end.
  for (std::size_t size = 0; size <= bytes.size(); size += std::max<std::size_t>(1, bytes.size() / 1000)) {
    const std::vector<std::uint8_t> beginning(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    LLVMFuzzerTestOneInput(beginning.data(), beginning.size());
  }
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      continue;  // nothing went wrong yet
    }
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::printf("%s\n", entry.path().filename().string().c_str());
      std::fflush(stdout);
      Replay(ReadWholeFile(entry.path()));
      ++count;
    }
  }
  std::printf("%d files\n", count);
  return count > 0 ? 0 : 1;
}
