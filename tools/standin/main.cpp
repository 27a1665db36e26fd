// The stand-in for DPInst that the sample payload carries as dpinst.exe and dpinst64.exe. It installs nothing.
//
// Environment variables:
//   KWA_STANDIN_REPORT=FOLDER  writes report.json (how it was started, and the files beside it) and a copy of
//                              dpinst.xml into the folder, and shows no window
//   KWA_STANDIN_EXIT=CODE      the exit code, decimal or 0x…; by default 1: one package was installed
//
// Exit code 0xFFFFFFFF: the report could not be written.

#include <windows.h>

#include <cstdio>

#include "platform_text.h"
#include "report.h"

namespace kwa {
namespace {

constexpr unsigned long kOnePackageInstalled = 0x00000001;
constexpr unsigned long kReportFailed = 0xFFFFFFFF;

// The folder that the program lies in, with a separator at its end.
std::wstring OwnFolder() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::wstring program = path;
  return program.substr(0, program.rfind(L'\\') + 1);
}

unsigned long Run() {
  const std::wstring ownFolder = OwnFolder();
  if (const auto reportFolder = Environment(L"KWA_STANDIN_REPORT")) {
    if (!WriteReport(DescribeRun(ownFolder), ownFolder, *reportFolder)) {
      std::fprintf(stderr, "standin: %s: cannot write the report\n", ToUtf8(*reportFolder).c_str());
      return kReportFailed;
    }
  }
  return EnvironmentNumber(L"KWA_STANDIN_EXIT", kOnePackageInstalled);
}

}  // namespace
}  // namespace kwa

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*showCommand*/) {
  return static_cast<int>(kwa::Run());
}
