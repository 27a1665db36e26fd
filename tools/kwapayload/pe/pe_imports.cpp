#include "pe/pe_imports.h"

#include <cstdint>
#include <utility>

namespace kwa {
namespace {

constexpr std::size_t kMaxLibraries = 1024;
constexpr std::size_t kMaxFunctions = 65536;
constexpr std::size_t kMaxNameLength = 512;

struct ImportReader {
  void Read(PeDirectoryIndex index) {
    const bool isDelayed = index == kPeDelayImportDirectory;
    const std::uint32_t descriptorSize = isDelayed ? 32 : 20;
    const std::uint32_t address = image.Directory(index).address;
    const ByteSpan descriptors = image.At(address);
    for (std::uint64_t at = 0; address != 0; at += descriptorSize) {
      if (!descriptors.Contains(at, descriptorSize) || table.libraries.size() >= kMaxLibraries) {
        table.isComplete = false;
        return;
      }
      const ByteSpan descriptor = descriptors.From(at);
      const std::uint32_t name = descriptor.U32(isDelayed ? 4 : 12);
      const std::uint32_t thunks = descriptor.U32(16);
      if (name == 0 || (!isDelayed && thunks == 0)) {
        return;
      }
      if (isDelayed) {
        // Old linkers wrote addresses that include the image base.
        const std::uint32_t base = (descriptor.U32(0) & 1) != 0 ? 0 : static_cast<std::uint32_t>(image.imageBase);
        AddLibrary(name - base, thunks - base, base);
      } else {
        // A linker may leave out the table of names; the table of addresses then holds them until the program is
        // loaded.
        AddLibrary(name, descriptor.U32(0) != 0 ? descriptor.U32(0) : thunks, 0);
      }
    }
  }

  std::string NameAt(std::uint32_t address, std::uint32_t offset) {
    const std::string_view name = image.At(address).TextAt(offset, kMaxNameLength + 1);
    if (name.empty() || name.size() > kMaxNameLength) {
      table.isComplete = false;
    }
    return std::string(name.substr(0, kMaxNameLength));
  }

  void AddLibrary(std::uint32_t name, std::uint32_t nameTable, std::uint32_t base) {
    ImportedLibrary library = {NameAt(name, 0), {}};
    const ByteSpan thunks = image.At(nameTable);
    const std::uint32_t width = image.isPlus ? 8 : 4;
    for (std::uint64_t at = 0;; at += width) {
      if (!thunks.Contains(at, width) || functionCount >= kMaxFunctions) {
        table.isComplete = false;
        break;
      }
      const std::uint64_t thunk = image.isPlus ? thunks.U64(at) : thunks.U32(at);
      if (thunk == 0) {
        break;
      }
      ++functionCount;
      if ((thunk >> (width * 8 - 1)) != 0) {
        library.functions.push_back("#" + std::to_string(thunk & 0xFFFF));
      } else {
        constexpr std::uint32_t kHintSize = 2;
        library.functions.push_back(NameAt(static_cast<std::uint32_t>(thunk) - base, kHintSize));
      }
    }
    table.libraries.push_back(std::move(library));
  }

  const PeImage& image;
  ImportTable table = {};
  std::size_t functionCount = 0;
};

}  // namespace

ImportTable ReadImports(const PeImage& image) {
  ImportReader reader = {image};
  reader.Read(kPeImportDirectory);
  reader.Read(kPeDelayImportDirectory);
  return std::move(reader.table);
}

}  // namespace kwa
