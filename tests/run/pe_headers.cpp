#include "pe_headers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>

PeHeaders::PeHeaders(const std::string& fileBytes) : bytes(fileBytes) {
  const auto dos = At<IMAGE_DOS_HEADER>(0);
  EXPECT_EQ(dos.e_magic, IMAGE_DOS_SIGNATURE);
  const auto start = static_cast<std::size_t>(dos.e_lfanew);
  nt = At<IMAGE_NT_HEADERS32>(start);
  EXPECT_EQ(nt.Signature, static_cast<DWORD>(IMAGE_NT_SIGNATURE));
  const std::size_t table = start + offsetof(IMAGE_NT_HEADERS32, OptionalHeader) + nt.FileHeader.SizeOfOptionalHeader;
  for (std::size_t i = 0; i < nt.FileHeader.NumberOfSections; ++i) {
    sections.push_back(At<IMAGE_SECTION_HEADER>(table + i * sizeof(IMAGE_SECTION_HEADER)));
  }
}

template <typename Type>
Type PeHeaders::At(std::size_t filePosition) const {
  Type value = {};
  if (filePosition > bytes.size() || sizeof value > bytes.size() - filePosition) {
    ADD_FAILURE() << "the file ends before " << filePosition;
  } else {
    std::memcpy(&value, bytes.data() + filePosition, sizeof value);
  }
  return value;
}

const IMAGE_SECTION_HEADER* PeHeaders::SectionAt(std::size_t filePosition) const {
  for (const IMAGE_SECTION_HEADER& section : sections) {
    if (filePosition - section.PointerToRawData < section.SizeOfRawData) {
      return &section;
    }
  }
  return nullptr;
}

std::size_t PeHeaders::FilePosition(DWORD virtualAddress) const {
  for (const IMAGE_SECTION_HEADER& section : sections) {
    if (virtualAddress - section.VirtualAddress < section.SizeOfRawData) {
      return section.PointerToRawData + virtualAddress - section.VirtualAddress;
    }
  }
  ADD_FAILURE() << "no section holds address " << virtualAddress;
  return 0;
}

std::string PeHeaders::TextAt(DWORD virtualAddress) const {
  return bytes.c_str() + FilePosition(virtualAddress);
}

std::vector<std::string> PeHeaders::Imports() const {
  std::vector<std::string> imports;
  DWORD descriptorAddress = nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
  for (;; descriptorAddress += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
    const auto descriptor = At<IMAGE_IMPORT_DESCRIPTOR>(FilePosition(descriptorAddress));
    if (descriptor.Name == 0) {
      return imports;
    }
    std::string library = TextAt(descriptor.Name);
    std::transform(library.begin(), library.end(), library.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    for (DWORD thunkAddress = descriptor.OriginalFirstThunk;; thunkAddress += sizeof(DWORD)) {
      const auto thunk = At<DWORD>(FilePosition(thunkAddress));
      if (thunk == 0) {
        break;
      }
      const bool isOrdinal = (thunk & IMAGE_ORDINAL_FLAG32) != 0;
      imports.push_back(library + " " + (isOrdinal ? "#" + std::to_string(thunk & 0xFFFF) : TextAt(thunk + 2)));
    }
  }
}
