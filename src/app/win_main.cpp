// The driver installer. This executable carries the maker's driver package and DPInst. It unpacks both into a work
// folder, configures DPInst, runs it and deletes the folder. There is one thread, no window, no message and no option:
// the user sees DPInst's wizard only. The exit status is 0 whenever the run returns.
//
// Two linker flags in CMakeLists.txt matter here. The page-sized file alignment lets the loader map the payload instead
// of copying it. The subsystem version 4.0 lets Windows 2000 and XP start the program.

#include <windows.h>

#include "app/dpinst_process.h"
#include "app/folder_tree.h"
#include "app/windows_bitness.h"
#include "archive/extract_archive.h"
#include "dpinst/dpinst_config.h"
#include "dpinst/package_identity.h"
#include "support/bounded_text.h"

#include <cstdlib>

namespace kwa {
namespace {

void IgnoreFileStart(const ArchiveEntry* /*entry*/, std::uint32_t /*size*/) {}

int Install() {
  // DeleteFolderTree needs two zero bytes after the path. So this array is one byte larger than the capacity passed to
  // every copy and append: the second zero byte is there even after a path that fills the capacity.
  char workFolder[kTextCapacity + 1] = {};
  char workPath[kTextCapacity] = {};
  DriverPackageIdentity identity = {};
  strcpy_s(identity.version, kTextCapacity, "");
  strcpy_s(identity.displayName, kTextCapacity, "");
  strcpy_s(workFolder, kTextCapacity, "");

  AppendPath(workFolder, std::getenv("TEMP"));
  strcat_s(workFolder, kTextCapacity, "\\kwa");
  DeleteFolderTree(workFolder);
  CreateDirectoryA(workFolder, nullptr);

  const ExtractionCallbacks callbacks = {IgnoreFileStart, nullptr};
  strcpy_s(workPath, kTextCapacity, "");
  strcat_s(workPath, kTextCapacity, workFolder);
  strcat_s(workPath, kTextCapacity, "\\");
  if (ExtractArchive(workPath, &callbacks, 0) != ArchiveOk) {
    return 0;
  }
  if (ExtractArchive(workPath, &callbacks, 1) != ArchiveOk) {
    return 0;
  }

  ReadPackageIdentity(workPath, identity.version, identity.displayName);
  WriteDpinstConfig(workPath, identity.version, identity.displayName);

  strcat_s(workPath, kTextCapacity, Is64BitWindows() != 0 ? "dpinst64.exe" : "dpinst.exe");
  if (!RunDpinst(workPath)) {
    return 0;
  }
  DeleteFolderTree(workFolder);
  return 0;
}

}  // namespace
}  // namespace kwa

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*showCommand*/) {
  return kwa::Install();
}
