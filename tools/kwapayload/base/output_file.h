#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace kwa {

// A file that appears under its name complete or not at all: written as a temporary file in the same folder, which
// Commit renames. Without a Commit the temporary file is removed and what stood under the name stays as it was. Every
// failure is thrown as ToolFailure.
class OutputFile {
 public:
  // Creates the temporary file. What exists as `target` must be a regular file.
  explicit OutputFile(std::filesystem::path targetPath);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  // Writes at once, without a buffer: for large pieces.
  void Write(const void* data, std::size_t size);
  void Write(std::string_view text) { Write(text.data(), text.size()); }

  // Closes the temporary file; a full disk may show only here.
  void Close();
  // Closes the temporary file if it is open and gives it its name.
  void Commit();

 private:
  std::filesystem::path target;
  std::filesystem::path temporary;
  std::FILE* stream = nullptr;
  bool committed = false;
};

}  // namespace kwa
