#pragma once

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace kwa {

// What becomes of a file that has the name already.
enum class Existing { Replaced, Kept };

// A file that appears under its name complete or not at all: written as a temporary file in the same folder, which
// Commit renames. Without a Commit the temporary file is removed and what stood under the name stays as it was. Every
// failure is thrown as ToolFailure.
class OutputFile {
 public:
  // Creates the temporary file. What exists as `target` must be a regular file.
  explicit OutputFile(std::filesystem::path targetPath, Existing existingFile = Existing::Replaced);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  // Writes at once, without a buffer: for large pieces.
  void Write(const void* data, std::size_t size);
  void Write(std::string_view text) { Write(text.data(), text.size()); }

  // Closes the temporary file; a full disk may show only here.
  void Close();
  // Closes the temporary file if it is open and gives it its name. Fails where a file that is to be kept has that name,
  // even if it has come to be only now.
  void Commit();

 private:
  std::filesystem::path target;
  Existing existing;
  std::filesystem::path temporary;
  std::FILE* stream = nullptr;
  bool committed = false;
};

// Makes the signals INT, TERM and HUP remove the temporary files that there are before they end the program. Those that
// the program was started to ignore stay ignored. Called once, before the first OutputFile.
void RemoveTemporaryFilesOnSignals();

}  // namespace kwa
