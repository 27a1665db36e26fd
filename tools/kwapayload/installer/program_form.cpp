#include "installer/program_form.h"

#include <algorithm>
#include <cstdint>

#include "pe/pe_imports.h"
#include "pe/pe_resources.h"
#include "trust/digest.h"

namespace kwa {
namespace {

// Bytes of the file that are left out. An archive is larger than an address.
struct Cut {
  std::uint64_t offset;
  std::uint64_t size;
};

constexpr std::uint64_t kAddressSize = 4;

void AppendRelocated(const PeImage& image, std::vector<Cut>* cuts) {
  constexpr std::uint32_t kBlockHeaderSize = 8;
  constexpr unsigned kHighLow = 3;
  const PeDirectory directory = image.Directory(kPeBaseRelocationDirectory);
  const ByteSpan table = image.At(directory.address).Part(0, directory.size);
  for (std::uint64_t block = 0; table.U32(block + 4) >= kBlockHeaderSize; block += table.U32(block + 4)) {
    const ByteSpan entries = table.Part(block, table.U32(block + 4)).From(kBlockHeaderSize);
    for (std::uint64_t i = 0; entries.Contains(i, 2); i += 2) {
      const ByteSpan word = image.At(table.U32(block) + (entries.U16(i) & 0xFFFU));
      if (entries.U16(i) >> 12 == kHighLow && !word.Empty()) {
        cuts->push_back({static_cast<std::uint64_t>(word.Data() - image.file.Data()), kAddressSize});
      }
    }
  }
}

std::string HeaderForm(const PeImage& image) {
  constexpr std::uint32_t kOptionalHeader = 24;  // from the signature
  constexpr std::uint32_t kDirectories = kOptionalHeader + 96;
  std::string form(image.file.Part(image.headerOffset, kDirectories).Text());
  form.resize(kDirectories);
  // Sizes of initialized data and of the image, and the checksum.
  for (const std::uint32_t masked : {8, 56, 64}) {
    form.replace(kOptionalHeader + masked, 4, 4, '\0');
  }
  for (const PeSection& section : image.sections) {
    form += section.name + " " + std::to_string(section.characteristics) + "\n";
  }
  return form;
}

std::string ImportForm(const PeImage& image) {
  std::string form;
  const ImportTable imports = ReadImports(image);
  for (const ImportedLibrary& library : imports.libraries) {
    form += library.name + ":";
    for (const std::string& function : library.functions) {
      form += " " + function;
    }
    form += "\n";
  }
  return form;
}

std::string ResourceForm(const PeImage& image) {
  std::string form;
  for (const PeResource& resource : ReadResources(image)) {
    form += std::to_string(resource.type) + " " + Sha256Hex(resource.bytes) + "\n";
  }
  return form;
}

std::string SectionForm(const PeImage& image, const PeSection& section, const std::vector<Cut>& cuts) {
  std::string form;
  std::uint64_t at = section.fileOffset;
  const std::uint64_t end = at + section.bytes.Size();
  bool hasArchive = false;
  for (const Cut& cut : cuts) {
    if (cut.offset >= at && cut.offset < end) {
      form += image.file.Part(at, cut.offset - at).Text();
      at = cut.offset + cut.size;
      if (cut.size > kAddressSize) {
        form += '\0';
        hasArchive = true;
      }
    }
  }
  form += image.file.Part(at, end - std::min(at, end)).Text();
  if (hasArchive) {
    // Zeros align what lies behind an archive, and fill the section's last page: none or more of them.
    form += '\0';
    const auto areZeros = [](char left, char right) { return left == '\0' && right == '\0'; };
    form.erase(std::unique(form.begin(), form.end(), areZeros), form.end());
  }
  return form;
}

}  // namespace

std::vector<ProgramPart> ProgramParts(const InstallerFile& installer) {
  if (!installer.image) {
    return {};
  }
  const PeImage& image = *installer.image;
  std::uint64_t sectionBytes = 0;
  for (const PeSection& section : image.sections) {
    sectionBytes += section.bytes.Size();
  }
  // Then they overlap, and a hundred of them could have the same gigabyte read a hundred times.
  if (sectionBytes > image.file.Size()) {
    return {{"overlapping sections", Sha256Hex(image.file)}};
  }
  std::vector<Cut> cuts;
  for (const ArchivePlace& archive : installer.archives) {
    cuts.push_back({archive.fileOffset, archive.size});
  }
  AppendRelocated(image, &cuts);
  std::sort(cuts.begin(), cuts.end(), [](const Cut& left, const Cut& right) { return left.offset < right.offset; });
  std::vector<ProgramPart> parts;
  const auto add = [&parts](const std::string& name, const std::string& form) {
    parts.push_back({name, Sha256Hex(ByteSpan(form))});
  };
  add("headers", HeaderForm(image));
  add("imports", ImportForm(image));
  add("resources", ResourceForm(image));
  for (const PeSection& section : image.sections) {
    const auto holds = [&](PeDirectoryIndex index) {
      const std::uint32_t address = image.Directory(index).address;
      return address >= section.virtualAddress && address - section.virtualAddress < section.bytes.Size();
    };
    if (section.name == ".eh_fram") {
      add(section.name, std::to_string(section.bytes.Size()));
    } else if (!holds(kPeImportDirectory) && !holds(kPeResourceDirectory) && !holds(kPeBaseRelocationDirectory)) {
      add(section.name, SectionForm(image, section, cuts));
    }
  }
  return parts;
}

}  // namespace kwa
