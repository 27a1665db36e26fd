#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "built_archive.h"

// A file of the payload inside the installer. All positions are bytes from the start of the installer's file.
struct EmbeddedFile {
  std::size_t entryPosition;  // of its 264-byte record
  std::size_t bodyPosition;
  std::string name;
  std::uint32_t size;
};

struct EmbeddedArchive {
  std::size_t position;
  std::vector<EmbeddedFile> files;
};

// A copy of the built installer, which a test can read and damage. Finds the archives without the code under test.
class InstallerImage {
 public:
  // The installer under test.
  InstallerImage();

  const std::string& Bytes() const { return bytes; }
  const EmbeddedArchive& A() const { return archives[0]; }
  const EmbeddedArchive& B() const { return archives[1]; }
  const EmbeddedFile& Find(const std::string& name) const;
  std::uint32_t Word(std::size_t position) const;

  // Overwrites bytes.
  void SetText(std::size_t position, const std::string& text) { bytes.replace(position, text.size(), text); }
  // Overwrites an archive's number of entries, the size or name of an entry, or the beginning of a body.
  void SetCount(const EmbeddedArchive& archive, std::uint32_t count) { PutWord(bytes, archive.position + 4, count); }
  void SetSize(const EmbeddedFile& file, std::uint32_t size) { PutWord(bytes, file.entryPosition + 260, size); }
  void SetName(const EmbeddedFile& file, std::string name);
  void SetBody(const EmbeddedFile& file, std::string body);
  // Truncates the file, or appends bytes.
  void Resize(std::size_t size) { bytes.resize(size, 'x'); }

 private:
  std::string bytes;
  std::vector<EmbeddedArchive> archives;
};
