#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/byte_span.h"
#include "base/fault.h"
#include "base/finding.h"
#include "payload/archive_reader.h"
#include "pe/pe_image.h"

namespace kwa {

// The place of a sound archive in an installer.
struct ArchivePlace {
  char letter;               // 'A' or 'B'; '-' for a file that is a single archive
  std::uint64_t fileOffset;  // of its first byte, in the file
  std::uint64_t size;        // bytes, without the terminator
};

enum class InputForm {
  Installer,      // signed or not
  Archive,        // a single payload archive
  PayloadFolder,  // a folder whose a and b hold what the two archives would
  PackageFolder,  // a folder with a driver package: what archive A would hold
};

// What a command looks into. Everything in it points into the bytes that it was read from.
struct InstallerFile {
  InputForm form = InputForm::Installer;
  ByteSpan bytes;                      // the whole file; empty for a folder
  std::optional<PeImage> image;        // of an installer
  std::vector<ArchivePlace> archives;  // the sound ones: two in a sound installer
  std::vector<ArchiveItem> items;      // of all archives, in their order
  // What is wrong with the structure: an executable that is cut off or does not hold exactly two sound archives, and
  // what keeps others from being sound; a single archive that is not sound.
  Findings findings;

  // Whether no archive is missing and none is too many.
  bool IsWhole() const {
    return form == InputForm::Installer ? archives.size() == 2 : form != InputForm::Archive || archives.size() == 1;
  }
  // Whether both archives' files must be there.
  bool HoldsBothArchives() const { return form == InputForm::Installer || form == InputForm::PayloadFolder; }
};

// Reads an installer or archive as far as possible. Fails when the bytes are neither.
Result<InstallerFile> ReadInstallerFile(ByteSpan bytes);

}  // namespace kwa
