#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "built_archive.h"

// A file of the payload as it stands in the installer's file. All positions are bytes from the file's start.
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

// The built installer, to be looked into and to be damaged in a copy. Finds its way by itself, not with the tools that
// are to be tested.
class InstallerImage {
 public:
  // The installer under test.
  InstallerImage();

  const std::string& Bytes() const { return bytes; }
  const EmbeddedArchive& A() const { return archives[0]; }
  const EmbeddedArchive& B() const { return archives[1]; }
  const EmbeddedFile& Find(const std::string& name) const;
  std::uint32_t Word(std::size_t position) const;

  // Writes over what stands there.
  void SetText(std::size_t position, const std::string& text) { bytes.replace(position, text.size(), text); }
  // The record's count of an archive, the name or size of an entry, the first bytes of a body.
  void SetCount(const EmbeddedArchive& archive, std::uint32_t count) { PutWord(bytes, archive.position + 4, count); }
  void SetSize(const EmbeddedFile& file, std::uint32_t size) { PutWord(bytes, file.entryPosition + 260, size); }
  void SetName(const EmbeddedFile& file, std::string name);
  void SetBody(const EmbeddedFile& file, std::string body);
  // Cuts the file's end off, or puts bytes there.
  void Resize(std::size_t size) { bytes.resize(size, 'x'); }

 private:
  std::string bytes;
  std::vector<EmbeddedArchive> archives;
};
