// The floor program: does the work of the installer at the lowest cost. It has the same folder, files, INF values,
// child and deletion, but it writes each file from the mapped payload with one call, and dpinst.xml as a finished text.
// script/bench compares the installer with it. It carries the same archives and is linked with the same flags.
#include <windows.h>
// It needs windows.h before it.
#include <shellapi.h>

#include <cstddef>
#include <string>

#include "archive/archive_format.h"

// Placed by embedded_payload.S.
extern "C" const unsigned char embeddedArchiveA[];
extern "C" const unsigned char embeddedArchiveB[];

namespace {

// About the size of a real dpinst.xml; the child does not read it.
constexpr std::size_t kDpinstXmlSize = 20 * 1024;

void WriteWholeFile(const std::string& path, const void* data, std::size_t size) {
  const HANDLE file =
      CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  DWORD written = 0;
  WriteFile(file, data, static_cast<DWORD>(size), &written, nullptr);
  CloseHandle(file);
}

void WriteFiles(const std::string& folder, const unsigned char* archive) {
  const std::uint32_t count = *reinterpret_cast<const std::uint32_t*>(archive + sizeof(kwa::kArchiveMagic));
  const auto* const entries = reinterpret_cast<const kwa::ArchiveEntry*>(archive + kwa::kArchiveHeaderSize);
  const unsigned char* body = archive + kwa::kArchiveHeaderSize + count * sizeof(kwa::ArchiveEntry);
  for (std::uint32_t i = 0; i < count; ++i) {
    WriteWholeFile(folder + entries[i].name, body, entries[i].size);
    body += kwa::PaddedSize(entries[i].size);
  }
}

void ReadInf(const std::string& folder) {
  WIN32_FIND_DATAA found;
  const HANDLE search = FindFirstFileA((folder + "*.inf").c_str(), &found);
  const std::string path = folder + found.cFileName;
  char value[MAX_PATH];
  GetPrivateProfileStringA("Version", "DriverVer", "", value, MAX_PATH, path.c_str());
  GetPrivateProfileStringA("Version", "DriverPackageDisplayName", "", value, MAX_PATH, path.c_str());
  FindClose(search);
}

void RunChild(const std::string& program) {
  std::string commandLine = program;  // Windows may write to it
  STARTUPINFOA startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process)) {
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
  }
}

void DeleteTree(const std::string& folder) {
  const std::string list = folder + '\0';  // c_str() adds the second zero
  SHFILEOPSTRUCTA operation = {};
  operation.wFunc = FO_DELETE;
  operation.pFrom = list.c_str();
  operation.fFlags = FOF_SILENT | FOF_NOCONFIRMATION;
  SHFileOperationA(&operation);
}

}  // namespace

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*showCommand*/) {
  char temp[MAX_PATH];
  GetEnvironmentVariableA("TEMP", temp, MAX_PATH);
  const std::string folder = std::string(temp) + "\\kwa";
  const std::string prefix = folder + "\\";

  DeleteTree(folder);
  CreateDirectoryA(folder.c_str(), nullptr);
  WriteFiles(prefix, embeddedArchiveA);
  WriteFiles(prefix, embeddedArchiveB);
  ReadInf(prefix);
  WriteWholeFile(prefix + "dpinst.xml", embeddedArchiveA, kDpinstXmlSize);
  RunChild(prefix + "dpinst64.exe");
  DeleteTree(folder);
  return 0;
}
