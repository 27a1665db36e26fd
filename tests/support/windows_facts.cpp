#include "windows_facts.h"

#include <windows.h>

#include "temporary_folder.h"

unsigned long WindowsMajorVersion() {
  // Unlike GetVersionEx, this ignores the compatibility mode.
  using GetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOW*);
  const auto getVersion = reinterpret_cast<GetVersionFunction>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetVersion")));
  OSVERSIONINFOW version = {};
  version.dwOSVersionInfoSize = sizeof version;
  getVersion(&version);
  return version.dwMajorVersion;
}

bool Is64Bit() {
  BOOL isWow64 = FALSE;
  IsWow64Process(GetCurrentProcess(), &isWow64);
  return isWow64 != FALSE;
}

std::string ExpectedDocument(bool legacyMode) {
  std::string document = ReadWholeFile(KWA_EXPECTED_DIR "/dpinst.xml");
  if (legacyMode) {
    constexpr char kBefore[] = "  <forceIfDriverIsNotBetter/>\r\n";
    ReplaceAll(document, kBefore, std::string(kBefore) + "  <legacyMode/>\r\n");
  }
  return document;
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
}
