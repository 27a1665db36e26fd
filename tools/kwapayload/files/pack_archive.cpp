#include "files/pack_archive.h"

#include <cstdint>
#include <string>

#include "archive/archive_format.h"
#include "files/output_file.h"
#include "files/tool_failure.h"

namespace kwa {
namespace {

// A 32-bit program has 2 GiB of address space for itself and both archives.
constexpr std::uint64_t kArchiveSizeLimit = 0x80000000U;

void WriteWord(std::uint64_t word, OutputFile* output) {
  std::string bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes += static_cast<char>(word >> shift & 0xFF);
  }
  output->Write(bytes);
}

}  // namespace

void PackArchive(const std::vector<ArchiveItem>& items, const std::filesystem::path& archive) {
  std::uint64_t size = kArchiveHeaderSize + items.size() * sizeof(ArchiveEntry) + kArchiveTerminatorSize;
  for (const ArchiveItem& item : items) {
    size += PaddedSize(item.body.Size());
  }
  if (size >= kArchiveSizeLimit) {
    throw ToolFailure(archive,
                      "would have " + std::to_string(size) + " bytes; a 32-bit program holds less than 2147483648");
  }
  OutputFile output(archive);
  WriteWord(kArchiveMagic, &output);
  WriteWord(items.size(), &output);
  for (const ArchiveItem& item : items) {
    std::string name(item.name);
    name.resize(kEntryNameCapacity);
    output.Write(name);
    WriteWord(item.body.Size(), &output);
  }
  for (const ArchiveItem& item : items) {
    output.Write(item.body.Text());
    output.Write(std::string(PaddedSize(item.body.Size()) - item.body.Size(), '\0'));
  }
  WriteWord(0, &output);  // the terminator
  output.Commit();
}

}  // namespace kwa
