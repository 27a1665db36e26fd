#pragma once

#include <share.h>

#include <cstdio>
#include <memory>
#include <string>

#include "temporary_folder.h"

// A temporary folder for tests of the installer's code, which takes paths as 8-bit text.
class TestFolder : public TemporaryFolder {
 public:
  // With the separator at the end that the installer's functions need.
  std::string Slashed() const { return Path() + "\\"; }
};

// An open file that no other program can open or delete.
using LockedFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

inline LockedFile Lock(const std::string& path) {
  return {_fsopen(path.c_str(), "wb", _SH_DENYRW), std::fclose};
}
