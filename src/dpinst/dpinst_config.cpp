#include "dpinst/dpinst_config.h"

#include <windows.h>

#include <cstdio>

#include "dpinst/dpinst_document.h"
#include "support/bounded_text.h"

namespace kwa {

int IsVistaOrLater() {
  OSVERSIONINFOA version = {};
  version.dwOSVersionInfoSize = sizeof(version);
  GetVersionExA(&version);
  return version.dwMajorVersion > 5 ? 1 : 0;
}

void WriteDpinstConfig(const char* workFolder, const char* version, const char* displayName) {
  char path[kTextCapacity] = {};
  strcpy_s(path, kTextCapacity, "");
  AppendPath(path, workFolder);
  strcat_s(path, kTextCapacity, "dpinst.xml");
  std::FILE* const file = std::fopen(path, "wt");
  if (file == nullptr) {
    return;
  }
  WriteDpinstDocument(file, version, displayName, IsVistaOrLater() == 0);
  std::fclose(file);
}

}  // namespace kwa
