#include "sample_folder.h"

#include <fstream>
#include <iterator>
#include <vector>

#include "base/output_file.h"
#include "base/tool_failure.h"

namespace kwa {

namespace fs = std::filesystem;

std::string ReadWholeFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
  if (!stream.is_open() || stream.bad()) throw ToolFailure(path, "cannot be read");
  return bytes;
}

void WriteIfDifferent(const fs::path& path, const std::string& bytes) {
  std::error_code error;
  if (fs::file_size(path, error) == bytes.size() && !error && ReadWholeFile(path) == bytes) return;
  OutputFile file(path);
  file.Write(bytes);
  file.Commit();
}

void PrepareFolder(const fs::path& folder, const std::set<std::string>& names) {
  try {
    fs::create_directories(folder);
    std::vector<fs::path> strays;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
      if (names.count(entry.path().filename().string()) == 0) strays.push_back(entry.path());
    }
    for (const fs::path& stray : strays) fs::remove_all(stray);
  } catch (const fs::filesystem_error& error) {
    throw ToolFailure(error.path1(), error.code().message());
  }
}

}  // namespace kwa
