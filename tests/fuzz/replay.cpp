// An ordinary test: gives the fuzzing target every file of some folders, and up to 1,000 beginnings of each file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    std::error_code noFolder;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i], noFolder)) {
      ++count;
      std::puts(entry.path().c_str());
      std::fflush(stdout);
      std::ifstream stream(entry.path(), std::ios::binary);
      std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(stream), {}};
      for (const std::size_t step = std::max<std::size_t>(1, bytes.size() / 1000); !bytes.empty();
           bytes.resize(bytes.size() - std::min(step, bytes.size()))) {
        // A block of exactly this size lets the sanitizer detect a read after the end.
        const std::vector<std::uint8_t> beginning(bytes);
        LLVMFuzzerTestOneInput(beginning.data(), beginning.size());
      }
    }
  }
  return count == 0 ? 1 : LLVMFuzzerTestOneInput(nullptr, 0);
}
