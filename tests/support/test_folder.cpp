#include "test_folder.h"

#include <windows.h>

#include <gtest/gtest.h>

std::string TestFolder::MakeFolderOfLength(std::size_t length) const {
  return MakeFolder(std::string(length - Slashed().size() - 1, 'n')) + "\\";
}

bool Exists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

LockedFile::LockedFile(const std::string& path)
    : handle(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {
  EXPECT_NE(handle, INVALID_HANDLE_VALUE) << path;
}

LockedFile::~LockedFile() {
  CloseHandle(handle);
}
