// The installer's calls of the platform, and its reaction to results that no test machine gives. The functions below
// replace those of the platform (see CMakeLists.txt).

#include <windows.h>
// It needs windows.h before it.
#include <shellapi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <tuple>

#include "app/dpinst_process.h"
#include "app/folder_tree.h"
#include "app/windows_bitness.h"
#include "dpinst/dpinst_config.h"
#include "dpinst/package_identity.h"

namespace {

// Their addresses serve as handles.
char processObject, threadObject, kernelObject;
char block[64];

struct Platform {
  bool hasMemory = true;
  BOOL startsPrograms = TRUE;
  DWORD wait = WAIT_OBJECT_0;
  BOOL knowsExitCode = TRUE;
  DWORD lastError = ERROR_FILE_NOT_FOUND;  // 2
  bool hasKernel = true;
  bool hasWow64Directory = true;
  UINT wow64Length = 0;
  int deletion = 0;
  DWORD majorVersion = 0;
  HANDLE search = nullptr;
  // The calls: each function with the arguments that matter.
  std::string calls;
} platform;

template <typename... Parts>
void Note(const Parts&... parts) {
  std::ostringstream call;
  (call << ... << parts) << "; ";
  platform.calls += call.str();
}

const char* Name(HANDLE handle) {
  return handle == &processObject ? "process" : handle == &threadObject ? "thread" : "another handle";
}

UINT WINAPI Wow64Directory(wchar_t* /*folder*/, UINT capacity) {
  return capacity == 260 ? platform.wow64Length : 0;
}

}  // namespace

void* WINAPI HeapAlloc(HANDLE /*heap*/, DWORD flags, SIZE_T size) {
  Note("HeapAlloc ", flags, " ", size);
  return platform.hasMemory ? block : nullptr;
}

BOOL WINAPI HeapFree(HANDLE /*heap*/, DWORD flags, void* memory) {
  Note("HeapFree ", flags, memory == block ? "" : " of another block");
  return TRUE;
}

BOOL WINAPI CreateProcessA(const char* application, char* commandLine, SECURITY_ATTRIBUTES* processSecurity,
                           SECURITY_ATTRIBUTES* threadSecurity, BOOL inheritHandles, DWORD flags, void* environment,
                           const char* folder, STARTUPINFOA* startup, PROCESS_INFORMATION* process) {
  STARTUPINFOA plainStartup = {};
  plainStartup.cb = 68;
  const bool isPlain = application == nullptr && commandLine == block && processSecurity == nullptr &&
                       threadSecurity == nullptr && inheritHandles == FALSE && flags == 0 && environment == nullptr &&
                       folder == nullptr && std::memcmp(startup, &plainStartup, sizeof plainStartup) == 0;
  Note("CreateProcessA", isPlain ? " " : " not plain ", commandLine);
  if (platform.startsPrograms != FALSE) {
    *process = {&processObject, &threadObject, 1, 2};
  }
  return platform.startsPrograms;
}

DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  Note("WaitForSingleObject ", Name(handle), milliseconds == INFINITE ? "" : " with a limit");
  return platform.wait;
}

BOOL WINAPI GetExitCodeProcess(HANDLE handle, DWORD* /*exitCode*/) {
  Note("GetExitCodeProcess ", Name(handle));
  return platform.knowsExitCode;
}

BOOL WINAPI GetExitCodeThread(HANDLE handle, DWORD* /*exitCode*/) {
  Note("GetExitCodeThread ", Name(handle));
  return FALSE;
}

DWORD WINAPI FormatMessageA(DWORD flags, const void* /*source*/, DWORD message, DWORD language, char* text,
                            DWORD /*size*/, va_list* /*inserts*/) {
  Note("FormatMessageA ", flags, " ", message, " ", language);
  *reinterpret_cast<char**>(text) = block;
  return 1;
}

HLOCAL WINAPI LocalFree(HLOCAL text) {
  Note(text == block ? "LocalFree" : "LocalFree of another text");
  return nullptr;
}

BOOL WINAPI CloseHandle(HANDLE handle) {
  Note("CloseHandle ", Name(handle));
  return TRUE;
}

DWORD WINAPI GetLastError() {
  return platform.lastError;
}

HMODULE WINAPI GetModuleHandleA(const char* name) {
  const bool isFound = platform.hasKernel && std::strcmp(name, "kernel32.dll") == 0;
  return isFound ? reinterpret_cast<HMODULE>(&kernelObject) : nullptr;
}

FARPROC WINAPI GetProcAddress(HMODULE module, const char* name) {
  const bool isFound = platform.hasWow64Directory && module == reinterpret_cast<HMODULE>(&kernelObject) &&
                       std::strcmp(name, "GetSystemWow64DirectoryW") == 0;
  return isFound ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(Wow64Directory)) : nullptr;
}

int WINAPI SHFileOperationA(SHFILEOPSTRUCTA* operation) {
  SHFILEOPSTRUCTA plain = {};
  plain.wFunc = FO_DELETE;
  plain.pFrom = operation->pFrom;
  plain.fFlags = FOF_SILENT | FOF_NOCONFIRMATION;
  Note("SHFileOperationA ", std::string(operation->pFrom),
       std::memcmp(operation, &plain, sizeof plain) == 0 ? "" : " not plain");
  return platform.deletion;
}

BOOL WINAPI GetVersionExA(OSVERSIONINFOA* version) {
  version->dwMajorVersion = version->dwOSVersionInfoSize == 148 ? platform.majorVersion : 0;
  return version->dwMajorVersion != 0 ? TRUE : FALSE;
}

HANDLE WINAPI FindFirstFileA(const char* /*pattern*/, WIN32_FIND_DATAA* /*found*/) {
  return platform.search;
}

BOOL WINAPI FindClose(HANDLE search) {
  Note("FindClose", search == platform.search ? "" : " of another search");
  return FALSE;
}

namespace {

TEST(RunDpinst, ContinuesAfterEveryFailure) {
  const std::string start = "HeapAlloc 0 23; CreateProcessA C:\\a folder\\dpinst.exe; ";
  const std::string wait = "WaitForSingleObject process; ";
  const std::string code = "GetExitCodeProcess process; ";
  const std::string close = "GetExitCodeThread thread; CloseHandle process; CloseHandle thread; HeapFree 0; ";
  const std::string report = "FormatMessageA 4352 2 1024; LocalFree; ";
  const std::tuple<void (*)(), bool, std::string> cases[] = {
      {[] {}, true, start + wait + code + close},
      {[] { platform.hasMemory = false; }, false, "HeapAlloc 0 23; "},
      {[] { platform.startsPrograms = FALSE; }, true, start + report + "HeapFree 0; "},
      {[] { platform.wait = WAIT_FAILED; }, true, start + wait + report + code + close},
      {[] { platform.knowsExitCode = FALSE; }, true, start + wait + code + report + close},
  };
  for (const auto& [change, result, calls] : cases) {
    platform = {};
    change();
    EXPECT_EQ(kwa::RunDpinst("C:\\a folder\\dpinst.exe"), result);
    EXPECT_EQ(platform.calls, calls);
  }
}

TEST(Is64BitWindows, IsTrueUnlessTheCallIsMissingOrNotImplemented) {
  const std::pair<void (*)(), int> cases[] = {
      {[] { platform.hasKernel = false; }, 0},
      {[] { platform.hasWow64Directory = false; }, 0},
      {[] { platform.wow64Length = 19, platform.lastError = ERROR_CALL_NOT_IMPLEMENTED; }, 1},
      {[] { platform.lastError = ERROR_CALL_NOT_IMPLEMENTED; }, 0},
      {[] { platform.lastError = ERROR_ACCESS_DENIED; }, 1},
  };
  for (const auto& [change, result] : cases) {
    platform = {};
    change();
    EXPECT_EQ(kwa::Is64BitWindows(), result);
  }
}

TEST(IsVistaOrLater, ComparesTheMajorVersion) {
  for (const DWORD majorVersion : {0U, 5U, 6U, 10U, 0xFFFFFFFFU}) {
    platform = {};
    platform.majorVersion = majorVersion;
    EXPECT_EQ(kwa::IsVistaOrLater(), majorVersion >= 6 ? 1 : 0) << majorVersion;
  }
}

TEST(DeleteFolderTree, AsksTheShellOnce) {
  for (const int answer : {0, 2, 0x402}) {
    platform = {};
    platform.deletion = answer;
    EXPECT_EQ(kwa::DeleteFolderTree("C:\\temp\\kwa\0"), answer == 0 ? 1 : 0);
    EXPECT_EQ(platform.calls, "SHFileOperationA C:\\temp\\kwa; ");
  }
}

// When no file matches, Windows returns an invalid handle, and the installer continues. Only a null handle stops it.
TEST(ReadPackageIdentity, LeavesTheBuffersOnlyWithoutAHandle) {
  for (const HANDLE search : {HANDLE(nullptr), INVALID_HANDLE_VALUE}) {
    platform = {};
    platform.search = search;
    char version[kwa::kTextCapacity] = "version";
    char displayName[kwa::kTextCapacity] = "name";
    EXPECT_EQ(kwa::ReadPackageIdentity("C:\\kwa\\", version, displayName), 0U);
    EXPECT_STREQ(version, search == nullptr ? "version" : "");
    EXPECT_STREQ(displayName, search == nullptr ? "name" : "");
    EXPECT_EQ(platform.calls, search == nullptr ? "" : "FindClose; ");
  }
}

}  // namespace
