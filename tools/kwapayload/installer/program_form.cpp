#include "installer/program_form.h"

#include <algorithm>
#include <cstdint>

#include "base/escaped_text.h"
#include "trust/digest.h"

namespace kwa {
namespace {

// A word of the program that holds an address. Both are relative to the image base.
struct Pointer {
  std::uint32_t at;
  std::uint32_t target;

  bool operator<(const Pointer& other) const { return at < other.at; }
};

struct Program {
  const PeImage& image;
  std::vector<Pointer> pointers;       // in the order of their places
  std::vector<std::uint32_t> targets;  // each once, ascending
};

void AppendNumber(std::uint32_t number, std::string* form) {
  *form += std::to_string(number) + ' ';
}

// The section that holds an address, or null.
const PeSection* FindSection(const PeImage& image, std::uint32_t address) {
  const auto found = std::find_if(image.sections.begin(), image.sections.end(), [&](const PeSection& section) {
    return address >= section.virtualAddress &&
           address - section.virtualAddress < std::max(section.virtualSize, section.fileSize);
  });
  return found == image.sections.end() ? nullptr : &*found;
}

void AppendRelocated(const PeImage& image, std::vector<Pointer>* pointers) {
  constexpr std::uint32_t kBlockHeaderSize = 8;
  constexpr unsigned kHighLow = 3;
  const PeDirectory directory = image.Directory(kPeBaseRelocationDirectory);
  const ByteSpan table = image.At(directory.address).Part(0, directory.size);
  for (std::uint64_t block = 0; table.U32(block + 4) >= kBlockHeaderSize; block += table.U32(block + 4)) {
    const ByteSpan entries = table.Part(block, table.U32(block + 4)).From(kBlockHeaderSize);
    for (std::uint64_t i = 0; entries.Contains(i, 2); i += 2) {
      if (entries.U16(i) >> 12 == kHighLow) {
        const std::uint32_t at = table.U32(block) + (entries.U16(i) & 0xFFFU);
        pointers->push_back({at, image.At(at).U32(0) - static_cast<std::uint32_t>(image.imageBase)});
      }
    }
  }
}

// Imports and resources hold addresses within their own section that no relocation names, since they are relative to
// the image base.
void AppendOwnAddresses(const PeImage& image, PeDirectoryIndex index, std::vector<Pointer>* pointers) {
  const PeSection* const section = FindSection(image, image.Directory(index).address);
  for (std::uint32_t i = 0; section != nullptr && i + 4 <= section->bytes.Size(); i += 4) {
    const std::uint32_t target = section->bytes.U32(i);
    if (FindSection(image, target) == section) {
      pointers->push_back({section->virtualAddress + i, target});
    }
  }
}

Program ReadProgram(const PeImage& image) {
  Program program = {image, {}, {}};
  AppendRelocated(image, &program.pointers);
  AppendOwnAddresses(image, kPeImportDirectory, &program.pointers);
  AppendOwnAddresses(image, kPeResourceDirectory, &program.pointers);
  std::sort(program.pointers.begin(), program.pointers.end());
  for (const Pointer& pointer : program.pointers) {
    program.targets.push_back(pointer.target);
  }
  for (const PeDirectory& directory : image.directories) {
    program.targets.push_back(directory.address);
  }
  std::sort(program.targets.begin(), program.targets.end());
  program.targets.erase(std::unique(program.targets.begin(), program.targets.end()), program.targets.end());
  return program;
}

// Which of the places pointed at an address is.
void AppendTarget(const Program& program, std::uint32_t target, std::string* form) {
  const auto place = std::lower_bound(program.targets.begin(), program.targets.end(), target);
  *form += "->";
  AppendNumber(static_cast<std::uint32_t>(place - program.targets.begin()), form);
}

std::string HeaderForm(const Program& program) {
  const PeImage& image = program.image;
  constexpr std::uint32_t kCoffEnd = 24;  // from the signature
  constexpr std::uint32_t kDirectories = kCoffEnd + 96;
  std::string form(image.file.Part(0, std::uint64_t{image.headerOffset} + kDirectories).Text());
  // Sizes of initialized data and of the image, and the checksum.
  for (const std::uint32_t masked : {8, 56, 64}) {
    form.replace(image.headerOffset + kCoffEnd + masked, 4, 4, '\0');
  }
  for (unsigned i = 0; i < image.directories.size(); ++i) {
    if (i != kPeSecurityDirectory) {
      AppendTarget(program, image.directories[i].address, &form);
      AppendNumber(i == kPeBaseRelocationDirectory ? 0 : image.directories[i].size, &form);
    }
  }
  return form;
}

std::string SectionForm(const Program& program, const PeSection& section, const std::vector<LocatedArchive>& archives) {
  std::string form;
  AppendNumber(section.characteristics, &form);
  const std::uint64_t end = std::uint64_t{section.fileOffset} + section.bytes.Size();
  const bool holdsArchives = std::any_of(archives.begin(), archives.end(), [&](const LocatedArchive& located) {
    return located.fileOffset >= section.fileOffset && located.fileOffset < end;
  });
  AppendNumber(holdsArchives ? 0 : section.virtualSize, &form);
  auto pointer = std::lower_bound(program.pointers.begin(), program.pointers.end(), Pointer{section.virtualAddress, 0});
  auto target = std::lower_bound(program.targets.begin(), program.targets.end(), section.virtualAddress);
  const auto addressAt = [&](std::uint64_t offset) {
    return section.virtualAddress + static_cast<std::uint32_t>(offset);
  };
  auto archive = archives.begin();
  for (std::uint64_t i = 0; i < section.bytes.Size();) {
    for (; target != program.targets.end() && *target <= addressAt(i); ++target) {
      form += "<-";
    }
    while (archive != archives.end() && archive->fileOffset < section.fileOffset + i) {
      ++archive;
    }
    if (archive != archives.end() && archive->fileOffset == section.fileOffset + i) {
      i += std::max<std::uint64_t>(archive->archive.size, 1);
      continue;
    }
    while (pointer != program.pointers.end() && pointer->at < addressAt(i)) {
      ++pointer;
    }
    if (pointer != program.pointers.end() && pointer->at == addressAt(i)) {
      AppendTarget(program, pointer->target, &form);
      i += 4;
      continue;
    }
    // Zeros may be what aligns the data behind an archive.
    if (section.bytes.U8(i) != 0 || !holdsArchives) {
      form += static_cast<char>(section.bytes.U8(i));
    }
    ++i;
  }
  return form;
}

}  // namespace

std::vector<ProgramPart> ProgramParts(const InstallerFile& installer) {
  if (!installer.image) {
    return {};
  }
  const PeImage& image = *installer.image;
  const Program program = ReadProgram(image);
  std::vector<ProgramPart> parts = {{"headers", Sha256Hex(ByteSpan(HeaderForm(program)))}};
  for (const PeSection& section : image.sections) {
    std::string form;
    if (section.name == ".eh_fram") {
      AppendNumber(section.virtualSize, &form);
    } else if (&section != FindSection(image, image.Directory(kPeBaseRelocationDirectory).address)) {
      form = SectionForm(program, section, installer.archives);
    }  // what is relocated shows where it stands
    parts.push_back({EscapedText(section.name), Sha256Hex(ByteSpan(form))});
  }
  return parts;
}

}  // namespace kwa
