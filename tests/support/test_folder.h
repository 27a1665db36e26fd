#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// An empty folder of a test's own, deleted with everything in it at the end. All paths are 8-bit text as the installer
// takes them.
class TestFolder {
 public:
  TestFolder();
  ~TestFolder();
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  // Without and with the separator at the end that the installer's functions want.
  const std::string& Path() const { return path; }
  std::string Slashed() const { return path + "\\"; }
  std::string operator/(const std::string& name) const { return Slashed() + name; }

  // Creates a folder in this one, its parents as well, and returns its path.
  std::string MakeFolder(const std::string& name) const;

  // Creates nested folders until the path, its separator counted, has exactly this length; returns it with separator.
  std::string MakeFolderOfLength(std::size_t length) const;

 private:
  std::string path;
};

bool Exists(const std::string& path);

// The whole file; a missing one fails the test and gives "".
std::string ReadWholeFile(const std::string& path);
void WriteWholeFile(const std::string& path, const std::string& bytes);

// The files of a folder by name, with their contents; folders appear with a separator behind the name and no contents.
std::map<std::string, std::string> FilesIn(const std::string& folder);

// The names alone, sorted.
std::vector<std::string> NamesIn(const std::string& folder);

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
