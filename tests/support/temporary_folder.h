#pragma once

#include <filesystem>
#include <string>
#include <vector>

// An empty folder of a test's own, deleted with everything in it at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Without a separator at its end.
  const std::string& Path() const { return path; }
  std::string operator/(const std::string& name) const { return (std::filesystem::path(path) / name).string(); }

  // Creates a folder in this one, its parents as well, and returns its path.
  std::string MakeFolder(const std::string& name) const;

 private:
  std::string path;
};

// The whole file; a missing one fails the test and gives "".
std::string ReadWholeFile(const std::filesystem::path& path);

// Creates the folders that lead to it as well.
void WriteWholeFile(const std::filesystem::path& path, const std::string& bytes);

// The names in a folder, sorted.
std::vector<std::string> NamesIn(const std::filesystem::path& folder);
