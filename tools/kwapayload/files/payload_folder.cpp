#include "files/payload_folder.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "archive/archive_format.h"
#include "base/ascii_text.h"
#include "content/file_kind.h"
#include "files/output_file.h"
#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

// The paths in a folder, in the order of an archive.
std::vector<std::filesystem::path> ListFolder(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> paths;
  std::error_code error;
  std::filesystem::directory_iterator entries(folder, error);
  for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
    paths.push_back(entries->path());
  }
  if (error) {
    throw ToolFailure(folder, "cannot be read: " + error.message());
  }
  if (paths.empty()) {
    throw ToolFailure(folder, "holds no files");
  }
  std::sort(paths.begin(), paths.end(), [](const std::filesystem::path& left, const std::filesystem::path& right) {
    const std::string upperLeft = UpperCase(left.filename().string());
    const std::string upperRight = UpperCase(right.filename().string());
    return upperLeft != upperRight ? upperLeft < upperRight : left < right;
  });
  return paths;
}

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

PayloadFolder::PayloadFolder(const std::filesystem::path& path, char archive) {
  std::vector<FileFault> faults;
  for (const std::filesystem::path& file : ListFolder(path)) {
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored)) {
      faults.push_back({file, "is a folder; an archive holds only files"});
      continue;
    }
    CollectFaults(&faults, [&] {
      const auto& [name, mapped] = files.emplace_back(file);
      const ByteSpan body = mapped.Bytes();
      if (const Check check = CheckEntryName(name); !check) {
        faults.push_back({file, check.error().what});
      }
      if (body.Size() >= kEntrySizeLimit) {
        faults.push_back(
            {file, "has " + std::to_string(body.Size()) + " bytes; the installer reads bodies below 2147483648"});
      }
      if (!items.empty() && IsSameText(items.back().name, name)) {
        faults.push_back({file, "is the same name for Windows as " + std::string(items.back().name)});
      }
      items.push_back({archive, name, body, {}, 0, 0});
    });
  }
  ThrowFaults(std::move(faults));
}

PayloadContents ContentsOf(const std::vector<ArchiveItem>& items) {
  PayloadContents contents;
  for (const ArchiveItem& item : items) {
    contents.push_back({item.archive, std::string(item.name), static_cast<std::uint32_t>(item.body.Size()),
                        KindText(ReadFileKind(item.body))});
  }
  return contents;
}

PayloadContents ReadContentsFile(const std::filesystem::path& path) {
  const MappedFile file(path);
  auto contents = ReadPayloadContents(file.Bytes());
  if (!contents) {
    std::vector<FileFault> faults;
    for (const std::string& fault : contents.error()) {
      faults.push_back({path, fault});
    }
    throw ToolFailure(std::move(faults));
  }
  return std::move(*contents);
}

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
