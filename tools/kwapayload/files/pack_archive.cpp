#include "files/pack_archive.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archive_format.h"
#include "base/input_file.h"
#include "files/tool_failure.h"

namespace kwa {
namespace {

// Large enough that system calls cost nothing; twice that no longer stays in the cache and takes twice the time.
constexpr std::size_t kBufferSize = 128 * 1024;

// A 32-bit program has 2 GiB of address space for itself and both archives.
constexpr std::uint64_t kArchiveSizeLimit = 0x80000000U;

constexpr std::size_t kClosingWordSize = 4;

// Collects what is to be written, so that every write but the last is a whole buffer at a multiple of its size: writes
// that begin within a page take twice the time.
class ArchiveWriter {
 public:
  explicit ArchiveWriter(OutputFile& outputFile) : output(outputFile), buffer(kBufferSize) {}

  void Append(std::string_view bytes) {
    while (!bytes.empty()) {
      const std::size_t count = std::min(bytes.size(), Room());
      std::memcpy(buffer.data() + used, bytes.data(), count);
      Advance(count);
      bytes.remove_prefix(count);
    }
  }

  void AppendZeros(std::size_t count) { Append({kZeros, count}); }

  void AppendWord(std::uint32_t word) {
    char bytes[4];
    for (int i = 0; i < 4; ++i) {
      bytes[i] = static_cast<char>(word >> (8 * i) & 0xFF);
    }
    Append({bytes, sizeof(bytes)});
  }

  // Reads into the buffer, so that bodies are copied no more often than they must. Returns fewer bytes than `size` only
  // where the file ends.
  std::uint64_t AppendFrom(InputFile& input, std::uint64_t size) {
    for (std::uint64_t remaining = size; remaining > 0;) {
      const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(remaining, Room()));
      const std::size_t count = input.Read(buffer.data() + used, wanted);
      Advance(count);
      remaining -= count;
      if (count < wanted) {
        return size - remaining;
      }
    }
    return size;
  }

  void Finish() {
    output.Write(buffer.data(), used);
    used = 0;
  }

 private:
  std::size_t Room() const { return buffer.size() - used; }

  void Advance(std::size_t count) {
    used += count;
    if (used == buffer.size()) {
      Finish();
    }
  }

  static constexpr char kZeros[kEntryNameCapacity] = {};

  OutputFile& output;
  std::vector<char> buffer;
  std::size_t used = 0;
};

void AppendTable(const std::vector<PayloadFile>& files, ArchiveWriter& writer) {
  writer.AppendWord(kArchiveMagic);
  writer.AppendWord(static_cast<std::uint32_t>(files.size()));
  for (const PayloadFile& file : files) {
    writer.Append(file.name);
    writer.AppendZeros(kEntryNameCapacity - file.name.size());
    writer.AppendWord(static_cast<std::uint32_t>(file.size));
  }
}

void AppendBody(const PayloadFile& file, ArchiveWriter& writer) {
  InputFile input(file.path);
  if (writer.AppendFrom(input, file.size) < file.size) {
    throw ToolFailure(file.path, "became shorter while it was packed");
  }
  char next = 0;
  if (input.Read(&next, 1) != 0) {
    throw ToolFailure(file.path, "became longer while it was packed");
  }
  writer.AppendZeros(static_cast<std::size_t>(PaddedSize(file.size) - file.size));
}

}  // namespace

void PackArchive(const std::vector<PayloadFile>& files, const std::filesystem::path& archive, OutputFile& output) {
  std::uint64_t size = kArchiveHeaderSize + files.size() * sizeof(ArchiveEntry) + kClosingWordSize;
  for (const PayloadFile& file : files) {
    size += PaddedSize(file.size);
  }
  if (size >= kArchiveSizeLimit) {
    throw ToolFailure(archive,
                      "would have " + std::to_string(size) + " bytes; a 32-bit program holds less than 2147483648");
  }
  ArchiveWriter writer(output);
  AppendTable(files, writer);
  for (const PayloadFile& file : files) {
    AppendBody(file, writer);
  }
  writer.AppendWord(0);  // the closing word
  writer.Finish();
}

}  // namespace kwa
