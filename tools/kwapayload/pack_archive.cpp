#include "pack_archive.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "archive/archive_format.h"
#include "input_file.h"
#include "tool_failure.h"

namespace kwa {
namespace {

// Large enough that system calls cost nothing, small enough to stay in the processor's cache.
constexpr std::size_t kBufferSize = 256 * 1024;

// A 32-bit program has 2 GiB of address space for itself and both archives.
constexpr std::uint64_t kArchiveSizeLimit = 0x80000000U;

constexpr std::size_t kClosingWordSize = 4;

void PutWord(std::vector<char>& bytes, std::uint32_t word) {
  for (int shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<char>(word >> shift & 0xFF));
  }
}

std::vector<char> MakeTable(const std::vector<PayloadFile>& files) {
  std::vector<char> bytes;
  bytes.reserve(kArchiveHeaderSize + files.size() * sizeof(ArchiveEntry));
  PutWord(bytes, kArchiveMagic);
  PutWord(bytes, static_cast<std::uint32_t>(files.size()));
  for (const PayloadFile& file : files) {
    bytes.insert(bytes.end(), file.name.begin(), file.name.end());
    bytes.resize(bytes.size() + kEntryNameCapacity - file.name.size());
    PutWord(bytes, static_cast<std::uint32_t>(file.size));
  }
  return bytes;
}

void PackBody(const PayloadFile& file, std::vector<char>& buffer, OutputFile& output) {
  InputFile input(file.path);
  for (std::uint64_t remaining = file.size; remaining > 0;) {
    const auto chunk = static_cast<std::size_t>(std::min<std::uint64_t>(remaining, kBufferSize));
    if (input.Read(buffer.data(), chunk) < chunk) {
      throw ToolFailure(file.path, "became shorter while it was packed");
    }
    // Only the last chunk has padding: the buffer's size is a multiple of 4.
    const auto padded = static_cast<std::size_t>(PaddedSize(chunk));
    std::memset(buffer.data() + chunk, 0, padded - chunk);
    output.Write(buffer.data(), padded);
    remaining -= chunk;
  }
  if (input.Read(buffer.data(), 1) != 0) {
    throw ToolFailure(file.path, "became longer while it was packed");
  }
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
  const std::vector<char> table = MakeTable(files);
  output.Write(table.data(), table.size());
  std::vector<char> buffer(kBufferSize + kClosingWordSize);
  for (const PayloadFile& file : files) {
    PackBody(file, buffer, output);
  }
  const char closingWord[kClosingWordSize] = {};
  output.Write(closingWord, kClosingWordSize);
}

}  // namespace kwa
