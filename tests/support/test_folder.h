#pragma once

#include <share.h>

#include <cstdio>
#include <memory>
#include <string>

#include "temporary_folder.h"

// A temporary folder for the installer's code: all paths are 8-bit text as that takes them.
class TestFolder : public TemporaryFolder {
 public:
  // With the separator at the end that the installer's functions want.
  std::string Slashed() const { return Path() + "\\"; }
};

// A file that is kept open so that nobody else can open or delete it.
using LockedFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

inline LockedFile Lock(const std::string& path) {
  return {_fsopen(path.c_str(), "wb", _SH_DENYRW), std::fclose};
}
