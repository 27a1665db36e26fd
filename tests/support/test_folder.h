#pragma once

#include <map>
#include <string>

#include "temporary_folder.h"

// A temporary folder for the installer's code: all paths are 8-bit text as that takes them.
class TestFolder : public TemporaryFolder {
 public:
  // With the separator at the end that the installer's functions want.
  std::string Slashed() const { return Path() + "\\"; }

  // Creates nested folders until the path, its separator counted, has exactly this length; returns it with separator.
  std::string MakeFolderOfLength(std::size_t length) const;
};

bool Exists(const std::string& path);

// The files of a folder by name, with their contents; folders appear with a separator behind the name and no contents.
std::map<std::string, std::string> FilesIn(const std::string& folder);

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
