#include "scratch_drive.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "test_folder.h"

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

std::vector<std::string> ScratchDrive::NewNames() const {
  const std::vector<std::string> names = NamesIn(root);
  std::vector<std::string> newNames;
  std::set_difference(names.begin(), names.end(), namesBefore.begin(), namesBefore.end(), std::back_inserter(newNames));
  return newNames;
}
