#include "dpinst/package_identity.h"

#include <windows.h>

namespace kwa {

std::uint32_t ReadPackageIdentity(const char* workFolder, char* version, char* displayName) {
  char path[kTextCapacity] = {};
  strcpy_s(path, kTextCapacity, "");
  AppendPath(path, workFolder);
  strcat_s(path, kTextCapacity, "*.inf");

  // Zeroed, so that the name is empty when no file matches. Both keys are then read from the path of the folder itself.
  // That is not a file, so both values are empty.
  WIN32_FIND_DATAA found = {};
  const HANDLE search = FindFirstFileA(path, &found);
  if (search == nullptr) {
    return 0;
  }
  strcpy_s(path, kTextCapacity, "");
  AppendPath(path, workFolder);
  strcat_s(path, kTextCapacity, found.cFileName);
  const DWORD length = GetPrivateProfileStringA("Version", "DriverVer", "", version, kTextCapacity, path);
  GetPrivateProfileStringA("Version", "DriverPackageDisplayName", "", displayName, kTextCapacity, path);
  FindClose(search);
  return length;
}

}  // namespace kwa
