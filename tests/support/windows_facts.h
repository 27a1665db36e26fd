#pragma once

#include <windows.h>

#include <memory>

#include "built_archive.h"
#include "temporary_folder.h"

// Facts about the Windows under test, read in other ways than in the installer, and the expected dpinst.xml.

// The major version number.
inline unsigned long WindowsMajorVersion() {
  // Unlike GetVersionEx, this ignores the compatibility mode.
  using GetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOW*);
  const auto getVersion = reinterpret_cast<GetVersionFunction>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetVersion")));
  OSVERSIONINFOW version = {};
  version.dwOSVersionInfoSize = sizeof version;
  getVersion(&version);
  return version.dwMajorVersion;
}

inline bool Is64Bit() {
  BOOL isWow64 = FALSE;
  IsWow64Process(GetCurrentProcess(), &isWow64);
  return isWow64 != FALSE;
}

// The dpinst.xml of the package "Marlin USB", version 02/13/2014,1.0.42.0: expected/dpinst.xml, in legacy mode with the
// line for old Windows versions.
inline std::string ExpectedDocument(bool legacyMode = WindowsMajorVersion() <= 5) {
  std::string document = ReadWholeFile(KWA_EXPECTED_DIR "/dpinst.xml");
  if (legacyMode) {
    constexpr char kBefore[] = "  <forceIfDriverIsNotBetter/>\r\n";
    ReplaceAll(document, kBefore, std::string(kBefore) + "  <legacyMode/>\r\n");
  }
  return document;
}

// An open file that no other program can open or delete.
inline std::shared_ptr<void> Lock(const std::string& path) {
  return {CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr), CloseHandle};
}
