#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

// An empty folder for one test. The destructor deletes it with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      path = (std::filesystem::temp_directory_path() / ("kwa-test-" + std::to_string(random()))).string();
    } while (!std::filesystem::create_directory(path));
  }
  ~TemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(path, error);
    EXPECT_FALSE(error) << path << ": " << error.message();
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Without a separator at the end.
  const std::string& Path() const { return path; }
  // A name of "" gives the folder with the separator.
  std::string operator/(const std::string& name) const { return (std::filesystem::path(path) / name).string(); }

  // Creates a folder in this folder, with its parents, and returns its path.
  std::string MakeFolder(const std::string& name) const {
    const std::string folder = *this / name;
    EXPECT_TRUE(std::filesystem::create_directories(folder)) << folder;
    return folder;
  }

 private:
  std::string path;
};

// The whole file. A missing file fails the test and gives "".
inline std::string ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  std::string bytes(error ? 0 : static_cast<std::size_t>(size), '\0');
  EXPECT_TRUE(!error && stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) << path;
  return bytes;
}

// Writes a file, and creates its parent folders.
inline void WriteWholeFile(const std::filesystem::path& path, const std::string& bytes) {
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  ASSERT_TRUE(stream) << path;
}

// The names in a folder, sorted.
inline std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}
