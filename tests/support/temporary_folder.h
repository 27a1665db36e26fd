#pragma once

#include <filesystem>
#include <string>
#include <vector>

// An empty folder for one test. The destructor deletes it with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Without a separator at the end.
  const std::string& Path() const { return path; }
  std::string operator/(const std::string& name) const { return (std::filesystem::path(path) / name).string(); }

  // Creates a folder in this folder, with its parents, and returns its path.
  std::string MakeFolder(const std::string& name) const;

 private:
  std::string path;
};

// The whole file. A missing file fails the test and gives "".
std::string ReadWholeFile(const std::filesystem::path& path);

// Writes a file, and creates its parent folders.
void WriteWholeFile(const std::filesystem::path& path, const std::string& bytes);

// The names in a folder, sorted.
std::vector<std::string> NamesIn(const std::filesystem::path& folder);
