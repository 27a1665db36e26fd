#include "pe/pe_resources.h"

#include <utf8.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "pe/pe_image.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxResources = 4096;
// Entries of the tree looked at in all: a tree whose branches point at each other has no end of them.
constexpr std::size_t kMaxTreeEntries = 65536;

constexpr std::uint32_t kHighBit = 0x80000000U;
constexpr unsigned kTreeDepth = 3;  // type, name, language

struct ResourceTree {
  // path  the type and name of the directory, as far as the level has them
  void ReadDirectory(std::uint32_t offset, unsigned level, PeResource path) {
    constexpr std::uint32_t kHeaderSize = 16;
    constexpr std::uint32_t kEntrySize = 8;
    std::uint32_t ignored = 0;
    const ByteSpan directory = root.From(offset);
    const std::uint32_t named = directory.U16(12);
    const std::uint32_t count = named + directory.U16(14);
    for (std::uint32_t i = named; i < count; ++i) {
      const ByteSpan entry = directory.Part(kHeaderSize + i * kEntrySize, kEntrySize);
      if (entry.Size() < kEntrySize || ++entriesSeen > kMaxTreeEntries || resources.size() >= kMaxResources) {
        return;
      }
      (level == 0 ? path.type : level == 1 ? path.name : ignored) = entry.U32(0);
      const bool isDirectory = (entry.U32(4) & kHighBit) != 0;
      const std::uint32_t target = entry.U32(4) & ~kHighBit;
      if (level + 1 < kTreeDepth && isDirectory) {
        ReadDirectory(target, level + 1, path);
      } else if (level + 1 == kTreeDepth && !isDirectory) {
        resources.push_back({path.type, path.name, image.At(root.U32(target)).Part(0, root.U32(target + 4ULL))});
      }
    }
  }

  const PeImage& image;
  ByteSpan root;
  std::size_t entriesSeen = 0;
  std::vector<PeResource> resources = {};
};

constexpr std::uint32_t kFixedSignature = 0xFEEF04BD;
constexpr std::uint32_t kBlockHeaderSize = 6;

// The UTF-16 text up to a zero or the end, a replacement character for half a surrogate pair. Sets *length to its
// units, the zero counted where there is one.
std::string Utf16Text(ByteSpan bytes, std::uint64_t* length) {
  constexpr std::uint32_t kReplacement = 0xFFFD;
  std::string text;
  std::uint64_t unit = 0;
  for (; bytes.Contains(unit * 2, 2); ++unit) {
    std::uint32_t character = bytes.U16(unit * 2);
    if (character == 0) {
      ++unit;
      break;
    }
    if (character >= 0xD800 && character < 0xE000) {
      const std::uint32_t low = bytes.U16(unit * 2 + 2);
      const bool isPair = character < 0xDC00 && low >= 0xDC00 && low < 0xE000;
      character = isPair ? 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00) : kReplacement;
      unit += isPair ? 1 : 0;
    }
    utf8::append(character, std::back_inserter(text));
  }
  *length = unit;
  return text;
}

std::uint64_t AlignedTo4(std::uint64_t offset) {
  return (offset + 3) / 4 * 4;
}

// One block of the record: a key, a value and blocks within. Blocks are aligned from the record's start.
struct Block {
  std::string key;
  ByteSpan value;
  std::uint64_t childrenOffset;  // in the record
  std::uint64_t end;             // likewise
};

std::optional<Block> ReadBlock(ByteSpan record, std::uint64_t offset, std::uint64_t limit) {
  const std::uint64_t length = record.U16(offset);
  if (length < kBlockHeaderSize || offset + length > limit) {
    return std::nullopt;
  }
  Block block;
  block.end = offset + length;
  std::uint64_t keyLength = 0;
  block.key = Utf16Text(record.Part(offset + kBlockHeaderSize, length - kBlockHeaderSize), &keyLength);
  const std::uint64_t valueOffset = std::min(AlignedTo4(offset + kBlockHeaderSize + keyLength * 2), block.end);
  // The length of a text is counted in UTF-16 units.
  const std::uint64_t valueSize = std::uint64_t{record.U16(offset + 2)} * (record.U16(offset + 4) == 1 ? 2 : 1);
  block.value = record.Part(valueOffset, std::min(valueSize, block.end - valueOffset));
  block.childrenOffset = AlignedTo4(valueOffset + valueSize);
  return block;
}

// The blocks in a part of the record, as far as it is sound.
std::vector<Block> ReadBlocks(ByteSpan record, std::uint64_t offset, std::uint64_t limit) {
  std::vector<Block> blocks;
  while (const std::optional<Block> block = ReadBlock(record, offset, limit)) {
    blocks.push_back(*block);
    offset = AlignedTo4(block->end);
  }
  return blocks;
}

std::string VersionText(std::uint32_t high, std::uint32_t low) {
  return std::to_string(high >> 16) + "." + std::to_string(high & 0xFFFF) + "." + std::to_string(low >> 16) + "." +
         std::to_string(low & 0xFFFF);
}

}  // namespace

std::vector<PeResource> ReadResources(const PeImage& image) {
  const std::uint32_t address = image.Directory(kPeResourceDirectory).address;
  ResourceTree tree = {image, address == 0 ? ByteSpan() : image.At(address)};
  tree.ReadDirectory(0, 0, {});
  return std::move(tree.resources);
}

ByteSpan FirstResource(const std::vector<PeResource>& resources, std::uint32_t type) {
  const auto found = std::find_if(resources.begin(), resources.end(),
                                  [type](const PeResource& resource) { return resource.type == type; });
  return found == resources.end() ? ByteSpan() : found->bytes;
}

std::string VersionRecord::Text(const std::string& key) const {
  const auto found = texts.find(key);
  return found == texts.end() ? "" : found->second;
}

std::optional<VersionRecord> ReadVersionRecord(ByteSpan resource) {
  const std::optional<Block> root = ReadBlock(resource, 0, resource.Size());
  if (!root || root->key != "VS_VERSION_INFO" || root->value.U32(0) != kFixedSignature) {
    return std::nullopt;
  }
  VersionRecord record;
  record.fileVersion = VersionText(root->value.U32(8), root->value.U32(12));
  record.productVersion = VersionText(root->value.U32(16), root->value.U32(20));
  for (const Block& info : ReadBlocks(resource, root->childrenOffset, root->end)) {
    if (info.key != "StringFileInfo") {
      continue;
    }
    const std::vector<Block> languages = ReadBlocks(resource, info.childrenOffset, info.end);
    if (!languages.empty()) {
      const Block& language = languages.front();
      for (const Block& text : ReadBlocks(resource, language.childrenOffset, language.end)) {
        std::uint64_t ignored = 0;
        record.texts.emplace(text.key, Utf16Text(text.value, &ignored));
      }
    }
    break;
  }
  return record;
}

std::optional<VersionRecord> FileVersionRecord(ByteSpan file) {
  const Result<PeImage> image = ReadPeImage(file);
  return image ? ReadVersionRecord(FirstResource(ReadResources(*image), kResourceTypeVersion)) : std::nullopt;
}

}  // namespace kwa
