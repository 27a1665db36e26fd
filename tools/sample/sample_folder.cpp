#include "sample_folder.h"

#include <vector>

#include "files/mapped_file.h"
#include "files/output_file.h"
#include "files/tool_failure.h"

namespace kwa {

namespace fs = std::filesystem;

void FillFolder(const fs::path& folder, const std::map<std::string, std::string>& files) {
  try {
    fs::create_directories(folder);
    std::vector<fs::path> strays;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
      if (files.count(entry.path().filename().string()) == 0) strays.push_back(entry.path());
    }
    for (const fs::path& stray : strays) fs::remove_all(stray);
  } catch (const fs::filesystem_error& error) {
    throw ToolFailure(error.path1(), error.code().message());
  }
  for (const auto& [name, bytes] : files) {
    const fs::path path = folder / name;
    if (fs::is_regular_file(path) && MappedFile(path).Bytes().Text() == bytes) continue;
    OutputFile file(path);
    file.Write(bytes);
    file.Commit();
  }
}

}  // namespace kwa
