#pragma once

#include <string>

#include "temporary_folder.h"

// A temporary folder for the installer's code: all paths are 8-bit text as that takes them.
class TestFolder : public TemporaryFolder {
 public:
  // With the separator at the end that the installer's functions want.
  std::string Slashed() const { return Path() + "\\"; }

  // Creates a folder whose path has exactly this length, its separator counted, and returns that path.
  std::string MakeFolderOfLength(std::size_t length) const;
};

bool Exists(const std::string& path);

// Keeps a file open so that nobody else can open or delete it.
class LockedFile {
 public:
  explicit LockedFile(const std::string& path);
  ~LockedFile();
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;

 private:
  void* handle;
};
