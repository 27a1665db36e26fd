#include <algorithm>
#include <cstdint>

#include "verify/verification.h"

// What the loader of Windows refuses. Microsoft, "PE Format", the fields of the optional header; that the sections
// follow each other in memory without a gap is seen with all loaders of Windows, and every linker makes it so.

namespace kwa {
namespace {

constexpr std::uint64_t kPage = 0x1000;

bool IsPowerOfTwo(std::uint64_t number) {
  return number != 0 && (number & (number - 1)) == 0;
}

std::uint64_t AlignedTo(std::uint64_t alignment, std::uint64_t offset) {
  return (offset + alignment - 1) / alignment * alignment;
}

}  // namespace

void VerifyImageLayout(const PeImage& image, Findings* findings) {
  const auto add = [findings](const std::string& what, const char* code) {
    findings->AddError("executable", what, code);
  };
  if (!IsPowerOfTwo(image.fileAlignment) || image.fileAlignment < 0x200 || image.fileAlignment > 0x10000 ||
      !IsPowerOfTwo(image.sectionAlignment) ||
      image.sectionAlignment < std::max<std::uint64_t>(image.fileAlignment, kPage)) {
    add("its alignments (sections " + std::to_string(image.sectionAlignment) + ", file " +
            std::to_string(image.fileAlignment) + ") are not powers of two that Windows loads",
        "alignment");
    return;  // nothing else can be judged without them
  }
  if (image.imageBase % 0x10000 != 0) {
    add("its image base is not a multiple of 65536", "image-base");
  }
  std::uint64_t next = AlignedTo(image.sectionAlignment, image.headersSize);
  std::uint64_t fileEnd = image.headersSize;
  bool isEntryExecutable = false;
  for (const PeSection& section : image.sections) {
    const std::uint64_t size = section.virtualSize != 0 ? section.virtualSize : section.fileSize;
    if (section.virtualAddress != next || size == 0) {
      add("its section " + section.name + " does not begin where the one before it ends in memory", "section-place");
      return;  // nor do those after it
    }
    const bool isInFile = section.fileSize != 0;
    if (isInFile && (section.fileOffset % image.fileAlignment != 0 || section.fileOffset < fileEnd)) {
      add("its section " + section.name + " is not aligned in the file, or overlaps another part", "section-place");
    }
    fileEnd = isInFile ? section.fileOffset + std::uint64_t{section.fileSize} : fileEnd;
    isEntryExecutable = isEntryExecutable || ((section.characteristics & kImageScnMemExecute) != 0 &&
                                              image.entryPoint >= next && image.entryPoint - next < size);
    next = AlignedTo(image.sectionAlignment, next + size);
  }
  if (image.imageSize < next) {
    add("its size in memory (" + std::to_string(image.imageSize) + ") is less than the " + std::to_string(next) +
            " bytes of its sections",
        "image-size");
  }
  if (!isEntryExecutable) {
    add("its entry point is not in an executable section", "entry-point");
  }
}

}  // namespace kwa
