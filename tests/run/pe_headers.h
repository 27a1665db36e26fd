#pragma once

#include <windows.h>

#include <string>
#include <vector>

// The headers of a 32-bit Windows executable as they stand in its file.
class PeHeaders {
 public:
  explicit PeHeaders(const std::string& fileBytes);

  const IMAGE_FILE_HEADER& File() const { return nt.FileHeader; }
  const IMAGE_OPTIONAL_HEADER32& Optional() const { return nt.OptionalHeader; }
  const std::vector<IMAGE_SECTION_HEADER>& Sections() const { return sections; }

  // The section of a position in the file; null when there is none.
  const IMAGE_SECTION_HEADER* SectionAt(std::size_t filePosition) const;

  // Each "library function", the library in lower case.
  std::vector<std::string> Imports() const;

 private:
  template <typename Type>
  Type At(std::size_t filePosition) const;
  std::size_t FilePosition(DWORD virtualAddress) const;
  std::string TextAt(DWORD virtualAddress) const;

  std::string bytes;
  IMAGE_NT_HEADERS32 nt;
  std::vector<IMAGE_SECTION_HEADER> sections;
};
