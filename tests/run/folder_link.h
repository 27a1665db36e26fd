#pragma once

#include <string>

// A folder's name that leads to another folder, as anybody may make one: a junction, or under Wine a symbolic link.
class FolderLink {
 public:
  FolderLink(const std::string& link, const std::string& target);
  ~FolderLink();
  FolderLink(const FolderLink&) = delete;
  FolderLink& operator=(const FolderLink&) = delete;

  // Whether it could be made.
  bool IsMade() const { return isMade; }

 private:
  std::string path;
  bool isMade;
};
