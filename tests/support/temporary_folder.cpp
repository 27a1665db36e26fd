#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <system_error>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::random_device random;
  do {
    path = (fs::temp_directory_path() / ("kwa-test-" + std::to_string(random()))).string();
  } while (!fs::create_directory(path));
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  fs::remove_all(path, error);
  EXPECT_FALSE(error) << path << ": " << error.message();
}

std::string TemporaryFolder::MakeFolder(const std::string& name) const {
  const std::string folder = *this / name;
  EXPECT_TRUE(fs::create_directories(folder)) << folder;
  return folder;
}

std::string ReadWholeFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::error_code error;
  const auto size = fs::file_size(path, error);
  std::string bytes(error ? 0 : static_cast<std::size_t>(size), '\0');
  EXPECT_TRUE(!error && stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) << path;
  return bytes;
}

void WriteWholeFile(const fs::path& path, const std::string& bytes) {
  std::error_code ignored;
  fs::create_directories(path.parent_path(), ignored);
  std::ofstream stream(path, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  ASSERT_TRUE(stream) << path;
}

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}
