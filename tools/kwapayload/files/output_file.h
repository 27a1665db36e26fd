#pragma once

#include <cstdio>
#include <filesystem>
#include <string_view>

namespace kwa {

// What happens to a file that already has the name.
enum class Existing { Replaced, Kept };

// A file that appears under its name complete or not at all. It is written as a temporary file in the same folder, and
// Commit renames it. Without Commit, the temporary file is removed and a file that already has the name stays as it is.
// Every failure is thrown as ToolFailure. At most one object exists at a time.
class OutputFile {
 public:
  // Creates the temporary file. If the target exists, it must be a regular file.
  explicit OutputFile(std::filesystem::path targetPath, Existing existingFile = Existing::Replaced);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile();

  void Write(std::string_view bytes);

  // Closes the temporary file and gives it its name. Fails where a file that is to be kept has that name by now; only
  // one that appears in the very moment of the renaming is lost. Called at most once.
  void Commit();

 private:
  std::filesystem::path target;
  Existing existing;
  std::filesystem::path temporary;
  std::FILE* stream = nullptr;
  bool committed = false;
};

// Makes the signals INT, TERM, HUP and BUS (see MappedFile) remove the temporary file before they end the program. A
// signal that the program's parent set to be ignored stays ignored. Called once, before the first OutputFile.
void RemoveTemporaryFileOnSignals();

}  // namespace kwa
