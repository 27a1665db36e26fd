#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "archive/payload_archive.h"
#include "built_archive.h"

// Bytes that a test puts into the place of the process's archive A or B.
class InstalledArchive {
 public:
  explicit InstalledArchive(const std::vector<ArchiveBody>& bodies) : InstalledArchive(BuildArchive(bodies)) {}

  // Any bytes at all, padded to whole words.
  explicit InstalledArchive(const std::string& bytes) : words((bytes.size() + 3) / 4) {
    std::memcpy(words.data(), bytes.data(), bytes.size());
  }

  // As if nobody had read from it yet. The words stay this object's.
  void Install(kwa::PayloadArchive& archive) const& { archive = {words.data(), 0}; }
  void Install(kwa::PayloadArchive& archive) && = delete;

  // Where the closing zero word stands, in bytes.
  std::uint32_t End() const { return static_cast<std::uint32_t>(words.size() * 4 - 4); }

 private:
  std::vector<std::uint32_t> words;
};
