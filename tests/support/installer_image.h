#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "built_archive.h"
#include "temporary_folder.h"

// A file of the payload inside the installer. All positions are bytes from the start of the installer's file.
struct EmbeddedFile {
  std::size_t entryPosition;  // of its 264-byte record
  std::size_t bodyPosition;
  std::uint32_t size;
};

// A copy of the built installer, which a test can read and damage. Finds the archives without the code under test.
class InstallerImage {
 public:
  // The installer under test.
  InstallerImage() : bytes(ReadWholeFile(KWA_INSTALLER)) {
    // Only an entry has its name followed by zeros to the end of the field.
    for (std::string first : {"marlinusb.exe", "dpinst.exe"}) {
      first.resize(260);
      std::size_t entry = bytes.find(first);
      archives.push_back(entry - 8);
      const std::uint32_t count = Word(entry - 4);
      std::size_t body = entry + 264 * count;
      for (std::uint32_t i = 0; i < count; ++i, entry += 264) {
        const std::uint32_t size = Word(entry + 260);
        files[bytes.c_str() + entry] = {entry, body, size};
        body += (size + 3) / 4 * 4;
      }
    }
  }

  const std::string& Bytes() const { return bytes; }
  // The positions of the archives.
  std::size_t A() const { return archives[0]; }
  std::size_t B() const { return archives[1]; }
  const EmbeddedFile& Find(const std::string& name) const { return files.at(name); }

  std::uint32_t Word(std::size_t position) const {
    std::uint32_t word = 0;
    bytes.copy(reinterpret_cast<char*>(&word), sizeof word, position);
    return word;
  }

  // Overwrites bytes.
  void SetText(std::size_t position, const std::string& text) { bytes.replace(position, text.size(), text); }
  void SetWord(std::size_t position, std::size_t word) { SetText(position, WordBytes(word)); }

  // Overwrites the name of an entry, or a body, with zeros up to its end.
  void SetName(const EmbeddedFile& file, std::string name) {
    name.resize(260);
    SetText(file.entryPosition, name);
  }
  void SetBody(const EmbeddedFile& file, std::string body) {
    EXPECT_LE(body.size(), file.size);
    body.resize(file.size);
    SetText(file.bodyPosition, body);
  }

  // Truncates the file, or appends bytes.
  void Resize(std::size_t size) { bytes.resize(size, 'x'); }

 private:
  std::string bytes;
  std::vector<std::size_t> archives;
  std::map<std::string, EmbeddedFile> files;
};
