#pragma once

#include <string>
#include <vector>

#include "named_lock.h"

// A drive whose root folder a test may fill: a folder of the test's own under a free letter where Windows lets it make
// one, else (Wine) drive C, used by one test at a time. What the test left in the root is removed at the end.
class ScratchDrive {
 public:
  explicit ScratchDrive(const std::string& folder);
  ~ScratchDrive();
  ScratchDrive(const ScratchDrive&) = delete;
  ScratchDrive& operator=(const ScratchDrive&) = delete;

  // "X:\".
  const std::string& Root() const { return root; }

  // What has come into the root since the beginning, and what has gone.
  std::vector<std::string> NewNames() const;
  std::vector<std::string> LostNames() const;

 private:
  bool MakeDrive(const std::string& folder);

  const NamedLock onlyOne{"kwa_test_scratch_drive"};
  std::string root = "C:\\";
  std::string ownLetter;
  std::vector<std::string> namesBefore;
};
