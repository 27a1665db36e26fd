#include "test_folder.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

TestFolder::TestFolder() {
  char temp[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, temp);
  // Process numbers are soon used again, and a test that was killed leaves its folder; the clock stands still for
  // milliseconds.
  static unsigned count = 0;
  path = std::string(temp) + "kwatest" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(GetTickCount()) +
         "-" + std::to_string(++count);
  EXPECT_TRUE(fs::create_directory(path)) << path;
}

TestFolder::~TestFolder() {
  std::error_code error;
  for (const auto& entry : fs::recursive_directory_iterator(path, error)) {
    SetFileAttributesA(entry.path().string().c_str(), FILE_ATTRIBUTE_NORMAL);
  }
  fs::remove_all(path, error);
  EXPECT_FALSE(error) << path << ": " << error.message();
}

std::string TestFolder::MakeFolder(const std::string& name) const {
  const std::string folder = *this / name;
  EXPECT_TRUE(fs::create_directories(folder)) << folder;
  return folder;
}

std::string TestFolder::MakeFolderOfLength(std::size_t length) const {
  constexpr std::size_t kPart = 50;
  std::string folder = Slashed();
  while (folder.size() < length) {
    std::size_t part = length - folder.size() - 1;
    if (part > kPart) {
      part = part - kPart < 2 ? kPart - 2 : kPart;  // leaves room for one more name and its separator
    }
    folder += std::string(part, 'n') + "\\";
  }
  EXPECT_EQ(folder.size(), length);
  EXPECT_TRUE(fs::create_directories(folder)) << folder;
  return folder;
}

bool Exists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::error_code error;
  const auto size = fs::file_size(path, error);
  std::string bytes(error ? 0 : static_cast<std::size_t>(size), '\0');
  if (error || !file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
    ADD_FAILURE() << "cannot read " << path;
    return {};
  }
  return bytes;
}

void WriteWholeFile(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  EXPECT_TRUE(file.flush().good()) << path;
}

std::map<std::string, std::string> FilesIn(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_directory()) {
      files[name + "\\"];
    } else {
      files[name] = ReadWholeFile(entry.path().string());
    }
  }
  return files;
}

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

LockedFile::LockedFile(const std::string& path)
    : handle(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
  EXPECT_NE(handle, INVALID_HANDLE_VALUE) << path;
}

LockedFile::~LockedFile() {
  CloseHandle(handle);
}
