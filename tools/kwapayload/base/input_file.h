#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace kwa {

// A file that is read front to back without a buffer of its own, for callers that bring a large one. Every failure is
// thrown as ToolFailure.
class InputFile {
 public:
  explicit InputFile(std::filesystem::path filePath);

  // Reads `size` bytes, fewer only where the file ends. Returns the bytes read.
  std::size_t Read(void* buffer, std::size_t size);

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::filesystem::path path;
  std::unique_ptr<std::FILE, Close> stream;
};

}  // namespace kwa
