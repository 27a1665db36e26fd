#include "scratch_drive.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "test_folder.h"

namespace {

using Names = std::vector<std::string>;

Names Difference(const Names& names, const Names& without) {
  Names difference;
  std::set_difference(names.begin(), names.end(), without.begin(), without.end(), std::back_inserter(difference));
  return difference;
}

}  // namespace

ScratchDrive::ScratchDrive(const std::string& folder) {
  if (MakeDrive(folder)) {
    root = ownLetter + "\\";
  }
  namesBefore = NamesIn(root);
}

ScratchDrive::~ScratchDrive() {
  for (const std::string& name : NewNames()) {
    std::error_code ignored;
    std::filesystem::remove_all(root + name, ignored);
  }
  if (!ownLetter.empty()) {
    DefineDosDeviceA(DDD_REMOVE_DEFINITION, ownLetter.c_str(), nullptr);
  }
}

bool ScratchDrive::MakeDrive(const std::string& folder) {
  const DWORD used = GetLogicalDrives();
  char letter = 'D';
  while (letter <= 'Y' && (used >> (letter - 'A') & 1U) != 0) {
    ++letter;
  }
  const std::string drive = {letter, ':'};
  if (DefineDosDeviceA(0, drive.c_str(), folder.c_str()) == FALSE) {
    return false;
  }
  ownLetter = drive;
  return Exists(drive + "\\");  // Wine knows the letter then, but opens no file there
}

Names ScratchDrive::NewNames() const {
  return Difference(NamesIn(root), namesBefore);
}

Names ScratchDrive::LostNames() const {
  return Difference(namesBefore, NamesIn(root));
}
