#include "installer/inspection.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "installer/preview.h"
#include "trust/digest.h"

namespace kwa {
namespace {

// Bytes of the file that do not count.
struct Gap {
  std::uint64_t begin;  // in the file
  std::uint64_t size;
  char kind;  // an archive's letter for the archive or its address; otherwise ' ', or 'S' for a signature

  std::uint64_t End() const { return begin + size; }
};

// The linker leaves two addresses of archives in the program. A file with very many of them is made to cost time.
constexpr std::size_t kMaxAddresses = 1024;

// The archives are left out, and so are the zeros after the last of them, which fill the section's last page. All else
// in the section counts.
void FindArchiveGaps(const InstallerFile& installer, const PeSection& payload, std::vector<Gap>* gaps) {
  const std::uint64_t end = payload.fileOffset + payload.bytes.Size();
  std::uint64_t last = payload.fileOffset;
  for (const ArchivePlace& archive : installer.archives) {
    if (archive.fileOffset >= payload.fileOffset && archive.fileOffset < end) {
      last = archive.fileOffset + archive.size;
      gaps->push_back({archive.fileOffset, archive.size, archive.letter});
    }
  }
  const ByteSpan rest = installer.bytes.Part(last, end - last);
  if (IsZeroFilled(rest)) {
    gaps->push_back({last, rest.Size(), ' '});
  }
}

void FindAddressGaps(const InstallerFile& installer, const PeSection& payload, std::vector<Gap>* gaps) {
  constexpr std::uint32_t kBlockHeaderSize = 8;
  constexpr unsigned kHighLow = 3;
  const PeImage& image = *installer.image;
  const PeDirectory directory = image.Directory(kPeBaseRelocationDirectory);
  const ByteSpan table = image.At(directory.address).Part(0, directory.size);
  std::vector<Gap> addresses;
  for (std::uint64_t block = 0; table.U32(block + 4) >= kBlockHeaderSize; block += table.U32(block + 4)) {
    const ByteSpan page = image.At(table.U32(block));
    const ByteSpan entries = table.Part(block, table.U32(block + 4)).From(kBlockHeaderSize);
    for (std::uint64_t i = 0; entries.Contains(i, 2); i += 2) {
      const ByteSpan word = page.Part(entries.U16(i) & 0xFFFU, 4);
      const std::uint64_t place = word.U32(0) - image.imageBase - payload.virtualAddress + payload.fileOffset;
      for (const ArchivePlace& archive : installer.archives) {
        if (entries.U16(i) >> 12 == kHighLow && word.Size() == 4 && archive.fileOffset == place) {
          addresses.push_back({static_cast<std::uint64_t>(word.Data() - installer.bytes.Data()), 4, archive.letter});
        }
      }
      if (addresses.size() > kMaxAddresses) {
        return;
      }
    }
  }
  gaps->insert(gaps->end(), addresses.begin(), addresses.end());
}

// A signature ends the file. It begins on a multiple of 8 after zeros. An entry of the security directory that names
// neither this place nor none counts.
void FindSignatureGaps(const PeImage& image, std::vector<Gap>* gaps) {
  const PeDirectory entry = image.Directory(kPeSecurityDirectory);
  const ByteSpan table = image.CertificateTable();
  const bool isSigned = !table.Empty() && table.Size() == entry.size &&
                        table.Data() + table.Size() == image.file.Data() + image.file.Size();
  if (image.directories.size() > kPeSecurityDirectory && (isSigned || (entry.address == 0 && entry.size == 0))) {
    const std::uint64_t directories = std::uint64_t{image.headerOffset} + 24 + image.OptionalHeaderSize();
    gaps->push_back({directories + kPeSecurityDirectory * 8, 8, ' '});
  }
  if (!isSigned) {
    return;
  }
  std::uint64_t begin = image.file.Size() - table.Size();
  std::uint64_t end = 0;  // of the last section
  for (const PeSection& section : image.sections) {
    end = std::max(end, std::uint64_t{section.fileOffset} + section.bytes.Size());
  }
  if (begin >= end && begin - end < 8 && IsZeroFilled(image.file.Part(end, begin - end))) {
    begin = end;
  }
  gaps->push_back({begin, image.file.Size() - begin, 'S'});
}

// The names of the parts by where they begin.
std::multimap<std::uint64_t, std::string> PartBegins(const PeImage& image) {
  std::multimap<std::uint64_t, std::string> begins = {{0, "headers"}};
  std::uint64_t end = 0;
  for (const PeSection& section : image.sections) {
    if (!section.bytes.Empty()) {
      begins.emplace(section.fileOffset, section.name);
      end = std::max(end, std::uint64_t{section.fileOffset} + section.bytes.Size());
    }
  }
  begins.emplace(end, "the bytes after the last section");
  return begins;
}

// The digest of a part of the file without its gaps. Moves *next to the first gap after the part.
std::string PartDigest(ByteSpan file, std::uint64_t begin, std::uint64_t end, const std::vector<Gap>& gaps,
                       std::size_t* next) {
  Digest digest("SHA256");
  for (; *next < gaps.size() && gaps[*next].begin < end; ++*next) {
    const Gap& gap = gaps[*next];
    digest.Add(file.Part(begin, gap.begin - std::min(begin, gap.begin)));
    begin = std::max(begin, gap.End());
  }
  digest.Add(file.Part(begin, end - std::min(begin, end)));
  return Hex(digest.Bytes());
}

// The places of the gaps, as the number of bytes between them. Without them, two programs whose gaps are in different
// places could have the same bytes left.
std::string PlacesDigest(const std::vector<Gap>& gaps) {
  std::string places;
  std::uint64_t end = 0;
  for (const Gap& gap : gaps) {
    places += gap.kind == 'S' ? "" : std::to_string(gap.begin - end) + gap.kind;
    end = gap.End();
  }
  return Sha256Hex(ByteSpan(places));
}

// Whether the sizes that are left out follow from the payload, as a linker writes them. Otherwise they count.
bool HasExpectedSizes(const InstallerFile& installer, const PeSection& payload) {
  const PeImage& image = *installer.image;
  if (installer.archives.empty() || image.sectionAlignment == 0) {
    return false;
  }
  const ArchivePlace& last = installer.archives.back();
  const std::uint64_t size = last.fileOffset + last.size + kArchiveTerminatorSize - payload.fileOffset;
  const std::uint64_t end = payload.virtualAddress + std::uint64_t{payload.virtualSize};
  return payload.virtualSize == size && payload.fileSize >= size && payload.fileSize - size < image.fileAlignment &&
         payload.fileSize % image.fileAlignment == 0 && image.imageSize >= end &&
         image.imageSize - end < image.sectionAlignment && image.imageSize % image.sectionAlignment == 0;
}

std::vector<Gap> FindGaps(const InstallerFile& installer) {
  const PeImage& image = *installer.image;
  const std::uint64_t optionalHeader = std::uint64_t{image.headerOffset} + 24;
  std::vector<Gap> gaps = {{optionalHeader + 64, 4, ' '}};  // CheckSum
  const auto payload = std::find_if(image.sections.begin(), image.sections.end(),
                                    [](const PeSection& section) { return section.name == ".payload"; });
  if (payload != image.sections.end() && HasExpectedSizes(installer, *payload)) {
    gaps.push_back({optionalHeader + 8, 4, ' '});          // SizeOfInitializedData
    gaps.push_back({optionalHeader + 56, 4, ' '});         // SizeOfImage
    gaps.push_back({payload->headerOffset + 8, 4, ' '});   // VirtualSize
    gaps.push_back({payload->headerOffset + 16, 4, ' '});  // SizeOfRawData
    FindArchiveGaps(installer, *payload, &gaps);
    FindAddressGaps(installer, *payload, &gaps);
  }
  FindSignatureGaps(image, &gaps);
  std::sort(gaps.begin(), gaps.end(), [](const Gap& left, const Gap& right) { return left.begin < right.begin; });
  const auto overlap = std::adjacent_find(gaps.begin(), gaps.end(),
                                          [](const Gap& left, const Gap& right) { return left.End() > right.begin; });
  // No linker makes gaps that overlap: such a file counts as it is.
  return overlap == gaps.end() ? gaps : std::vector<Gap>();
}

}  // namespace

Program ReadProgram(const InstallerFile& installer) {
  Program program;
  if (installer.form == InputForm::Archive) {
    const ByteSpan rest = installer.bytes.From(installer.archives.front().size + kArchiveTerminatorSize);
    if (!rest.Empty()) {
      program.parts.push_back({"the bytes after the archive", Sha256Hex(rest)});
    }
  }
  if (installer.form != InputForm::Installer) {
    return program;
  }
  const std::vector<Gap> gaps = FindGaps(installer);
  const std::multimap<std::uint64_t, std::string> begins = PartBegins(*installer.image);
  std::size_t nextGap = 0;
  for (auto part = begins.begin(); part != begins.end(); ++part) {
    const auto next = std::next(part);
    const std::uint64_t end = next == begins.end() ? installer.bytes.Size() : next->first;
    program.parts.push_back({part->second, PartDigest(installer.bytes, part->first, end, gaps, &nextGap)});
  }
  program.parts.push_back({"the places of the archives", PlacesDigest(gaps)});
  std::string all;
  for (const ProgramPart& part : program.parts) {
    all += part.name + '\n' + part.sha256 + '\n';
  }
  program.fingerprint = Sha256Hex(ByteSpan(all));
  return program;
}

Inspection Inspect(InstallerFile installer) {
  Inspection inspection = {};
  inspection.installer = std::move(installer);
  const std::vector<ArchiveItem>& items = inspection.installer.items;
  const ByteSpan bytes = inspection.installer.bytes;
  inspection.sha256 = bytes.Empty() ? "" : Sha256Hex(bytes);
  inspection.version = FileVersionRecord(bytes);
  FileDigests digests(bytes);
  inspection.signatures = ReadEmbeddedSignatures(digests);
  inspection.program = ReadProgram(inspection.installer);
  inspection.configuration = inspection.version ? inspection.version->Text("Configuration") : "";
  inspection.hasKnownTexts = HasKnownTexts(inspection.installer);
  inspection.package = ReadDriverPackage(items);
  PackageTrust trust = ReadPackageTrust(items, inspection.package);
  inspection.files.reserve(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    const ByteSpan body = items[i].body;
    inspection.files.push_back(
        {items[i], ReadFileKind(body), Sha256Hex(body), FileVersionRecord(body), std::move(trust.files[i])});
  }
  return inspection;
}

const DriverPackage& PackageOf(const Inspection& inspection) {
  static const DriverPackage kNone = {};
  return inspection.package ? *inspection.package : kNone;
}

}  // namespace kwa
