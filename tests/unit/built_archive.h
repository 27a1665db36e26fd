#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "archive/payload_archive.h"

// An archive that a test builds by hand, as a writer must, with the closing zero word.
struct BuiltEntry {
  std::string name;
  std::string body;
  // What the entry says of the body's size; by default the truth.
  std::uint32_t size = static_cast<std::uint32_t>(body.size());
};

class BuiltArchive {
 public:
  explicit BuiltArchive(const std::vector<BuiltEntry>& entries) {
    std::string bytes = "KWAP" + Word(static_cast<std::uint32_t>(entries.size()));
    for (const BuiltEntry& entry : entries) {
      std::string name = entry.name;
      name.resize(260);
      bytes += name + Word(entry.size);
    }
    for (const BuiltEntry& entry : entries) {
      bodyOffsets.push_back(static_cast<std::uint32_t>(bytes.size()));
      bytes += entry.body;
      bytes.resize((bytes.size() + 3) / 4 * 4);
    }
    size = static_cast<std::uint32_t>(bytes.size());
    SetBytes(bytes + Word(0));
  }

  // Any bytes at all, padded to whole words.
  static BuiltArchive Raw(const std::string& bytes) {
    BuiltArchive archive({});
    archive.size = static_cast<std::uint32_t>(bytes.size());
    archive.SetBytes(bytes);
    return archive;
  }

  // Makes this the process's archive A or B, as if nobody had read from it yet.
  // The words stay this object's.
  void Install(kwa::PayloadArchive& archive) const& { archive = {words.data(), 0}; }
  void Install(kwa::PayloadArchive& archive) && = delete;

  std::uint32_t size;                      // bytes up to the closing zero word
  std::vector<std::uint32_t> bodyOffsets;  // where each body begins

  static std::string Word(std::uint32_t word) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
      bytes += static_cast<char>(word >> (8 * i));
    }
    return bytes;
  }

 private:
  void SetBytes(const std::string& bytes) {
    words.clear();
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
      std::uint32_t word = 0;
      for (std::size_t j = 0; j < 4 && i + j < bytes.size(); ++j) {
        word |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + j])) << (8 * j);
      }
      words.push_back(word);
    }
  }

  std::vector<std::uint32_t> words;
};
