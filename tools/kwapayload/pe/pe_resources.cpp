#include "pe/pe_resources.h"

#include <algorithm>
#include <utility>

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

}  // namespace kwa
