#include "test_folder.h"

#include <windows.h>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

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

std::map<std::string, std::string> FilesIn(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_directory()) {
      files[name + "\\"];
    } else {
      files[name] = ReadWholeFile(entry.path());
    }
  }
  return files;
}

LockedFile::LockedFile(const std::string& path)
    : handle(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
  EXPECT_NE(handle, INVALID_HANDLE_VALUE) << path;
}

LockedFile::~LockedFile() {
  CloseHandle(handle);
}
