#include "platform_calls.h"

#include <shellapi.h>
#include <winternl.h>

#include <cstring>
#include <sstream>

// The code under test calls through the import table's pointers. Defined here, the linker takes these for them.
#define REPLACE_IMPORT(function, argumentBytes)                                                      \
  extern "C" decltype(&function) replaced##function __asm__("__imp__" #function "@" #argumentBytes); \
  decltype(&function) replaced##function = Fake##function

extern "C" NTSTATUS NTAPI LdrGetProcedureAddress(HMODULE module, const ANSI_STRING* name, ULONG ordinal,
                                                 void** address);

namespace {

const PlatformAnswers* answers = nullptr;
std::vector<std::string> made;
bool noting = false;

// Handles and the like that are never followed.
template <typename Pointer>
Pointer Token(std::uintptr_t number) {
  return reinterpret_cast<Pointer>(number);  // NOLINT(performance-no-int-to-ptr)
}
const HANDLE kHeap = Token<HANDLE>(0xA0);
const HANDLE kProcess = Token<HANDLE>(0xB0);
const HANDLE kThread = Token<HANDLE>(0xB4);
const HMODULE kKernel = Token<HMODULE>(0xC0);
char heapBlock[1024];
char messageText[] = "text";

bool Faked() {
  return answers != nullptr && !noting;
}

template <typename... Parts>
void Note(const Parts&... parts) {
  noting = true;  // the note itself may use the heap
  std::ostringstream line;
  (line << ... << parts);
  made.push_back(line.str());
  noting = false;
}

std::string Text(const char* text) {
  return text == nullptr ? "null" : "'" + std::string(text) + "'";
}

const char* Name(HANDLE handle) {
  return handle == kProcess ? "process" : handle == kThread ? "thread" : handle == kHeap ? "heap" : "another handle";
}

// GetModuleHandleA and GetProcAddress by other names.
HMODULE RealModule(const char* name) {
  HMODULE handle = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, name, &handle);
  return handle;
}

void* RealAddress(HMODULE module, const char* name) {
  const USHORT length = static_cast<USHORT>(std::strlen(name));
  const ANSI_STRING text = {length, length, const_cast<char*>(name)};
  void* address = nullptr;
  LdrGetProcedureAddress(module, &text, 0, &address);
  return address;
}
#define CALL_REAL(function) reinterpret_cast<decltype(&function)>(RealAddress(RealModule("kernel32"), #function))

// Those that the runtime and the test library call as well go on to the real ones where no test asks.

HANDLE WINAPI FakeGetProcessHeap() {
  return Faked() ? kHeap : CALL_REAL(GetProcessHeap)();
}

void* WINAPI FakeHeapAlloc(HANDLE heap, DWORD flags, SIZE_T size) {
  if (!Faked()) {
    return CALL_REAL(HeapAlloc)(heap, flags, size);
  }
  Note("HeapAlloc ", Name(heap), " ", flags, " ", size);
  std::memset(heapBlock, '#', sizeof heapBlock);
  return answers->heapAlloc ? heapBlock : nullptr;
}

BOOL WINAPI FakeHeapFree(HANDLE heap, DWORD flags, void* block) {
  if (!Faked()) {
    return CALL_REAL(HeapFree)(heap, flags, block);
  }
  Note("HeapFree ", Name(heap), " ", flags, block == heapBlock ? " block" : " something else");
  return TRUE;
}

BOOL WINAPI FakeCreateProcessA(const char* application, char* commandLine, SECURITY_ATTRIBUTES* processSecurity,
                               SECURITY_ATTRIBUTES* threadSecurity, BOOL inheritHandles, DWORD flags, void* environment,
                               const char* folder, STARTUPINFOA* startup, PROCESS_INFORMATION* process) {
  STARTUPINFOA plainStartup = {};
  plainStartup.cb = 68;
  const PROCESS_INFORMATION plainProcess = {};
  Note("CreateProcessA ", Text(application), " ", Text(commandLine), commandLine == heapBlock ? " in the block" : "",
       processSecurity == nullptr && threadSecurity == nullptr ? " no security" : "", " ", inheritHandles, " ", flags,
       environment == nullptr ? " own environment" : "", " ", Text(folder),
       std::memcmp(startup, &plainStartup, sizeof plainStartup) == 0 ? " plain start" : "",
       std::memcmp(process, &plainProcess, sizeof plainProcess) == 0 ? " zeroed result" : "");
  if (answers->createProcess != FALSE) {
    *process = {kProcess, kThread, 1, 2};
  }
  return answers->createProcess;
}

DWORD WINAPI FakeWaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  if (!Faked()) {
    return CALL_REAL(WaitForSingleObject)(handle, milliseconds);
  }
  Note("WaitForSingleObject ", Name(handle), milliseconds == INFINITE ? " forever" : " with a limit");
  return answers->wait;
}

BOOL WINAPI FakeGetExitCodeProcess(HANDLE handle, DWORD* exitCode) {
  Note("GetExitCodeProcess ", Name(handle));
  *exitCode = 0x80010000;
  return answers->getExitCodeProcess;
}

BOOL WINAPI FakeGetExitCodeThread(HANDLE handle, DWORD* exitCode) {
  Note("GetExitCodeThread ", Name(handle));
  *exitCode = 0x80010000;
  return FALSE;
}

BOOL WINAPI FakeCloseHandle(HANDLE handle) {
  if (!Faked()) {
    return CALL_REAL(CloseHandle)(handle);
  }
  Note("CloseHandle ", Name(handle));
  return TRUE;
}

DWORD WINAPI FakeGetLastError() {
  if (!Faked()) {
    return CALL_REAL(GetLastError)();
  }
  Note("GetLastError");
  return answers->lastError;
}

DWORD WINAPI FakeFormatMessageA(DWORD flags, const void* source, DWORD message, DWORD language, char* text, DWORD size,
                                va_list* inserts) {
  Note("FormatMessageA ", std::hex, flags, source == nullptr ? " no source " : " a source ", message, " ", language,
       " ", size, inserts == nullptr ? " no inserts" : " inserts");
  if (answers->formatMessage) {
    *reinterpret_cast<char**>(text) = messageText;
  }
  return answers->formatMessage ? sizeof messageText - 1 : 0;
}

HLOCAL WINAPI FakeLocalFree(HLOCAL block) {
  Note("LocalFree", block == messageText ? " text" : " something else");
  return nullptr;
}

HMODULE WINAPI FakeGetModuleHandleA(const char* name) {
  if (!Faked()) {
    return RealModule(name);
  }
  Note("GetModuleHandleA ", Text(name));
  return answers->kernelModule ? kKernel : nullptr;
}

UINT WINAPI FakeGetSystemWow64DirectoryW(wchar_t* folder, UINT capacity) {
  Note("GetSystemWow64DirectoryW ", folder == nullptr ? "null " : "", capacity);
  return answers->wow64Length;
}

FARPROC WINAPI FakeGetProcAddress(HMODULE module, const char* name) {
  if (!Faked()) {
    return reinterpret_cast<FARPROC>(RealAddress(module, name));
  }
  Note("GetProcAddress ", module == kKernel ? "kernel " : "", Text(name));
  return answers->wow64Function ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(FakeGetSystemWow64DirectoryW))
                                : nullptr;
}

int WINAPI FakeSHFileOperationA(SHFILEOPSTRUCTA* operation) {
  SHFILEOPSTRUCTA plain = {};
  plain.wFunc = FO_DELETE;
  plain.pFrom = operation->pFrom;
  plain.fFlags = operation->fFlags;
  Note("SHFileOperationA ", Text(operation->pFrom), " ", std::hex, operation->fFlags,
       std::memcmp(operation, &plain, sizeof plain) == 0 ? " plain deletion" : "");
  return answers->shFileOperation;
}

BOOL WINAPI FakeGetVersionExA(OSVERSIONINFOA* version) {
  OSVERSIONINFOA plain = {};
  plain.dwOSVersionInfoSize = 148;
  Note("GetVersionExA", std::memcmp(version, &plain, sizeof plain) == 0 ? " plain" : "");
  version->dwMajorVersion = answers->majorVersion;
  return answers->getVersion;
}

HANDLE WINAPI FakeFindFirstFileA(const char* pattern, WIN32_FIND_DATAA* /*found*/) {
  Note("FindFirstFileA ", Text(pattern));
  return answers->search;
}

BOOL WINAPI FakeFindClose(HANDLE search) {
  Note("FindClose", search == INVALID_HANDLE_VALUE ? " invalid" : "");
  return FALSE;
}

DWORD WINAPI FakeGetPrivateProfileStringA(const char* section, const char* key, const char* byDefault, char* text,
                                          DWORD size, const char* path) {
  Note("GetPrivateProfileStringA ", Text(section), " ", Text(key), " ", Text(byDefault), " ", size, " ", Text(path));
  *text = '\0';
  return 0;
}

}  // namespace

REPLACE_IMPORT(GetProcessHeap, 0);
REPLACE_IMPORT(HeapAlloc, 12);
REPLACE_IMPORT(HeapFree, 12);
REPLACE_IMPORT(CreateProcessA, 40);
REPLACE_IMPORT(WaitForSingleObject, 8);
REPLACE_IMPORT(GetExitCodeProcess, 8);
REPLACE_IMPORT(GetExitCodeThread, 8);
REPLACE_IMPORT(CloseHandle, 4);
REPLACE_IMPORT(GetLastError, 0);
REPLACE_IMPORT(FormatMessageA, 28);
REPLACE_IMPORT(LocalFree, 4);
REPLACE_IMPORT(GetModuleHandleA, 4);
REPLACE_IMPORT(GetProcAddress, 8);
REPLACE_IMPORT(SHFileOperationA, 4);
REPLACE_IMPORT(GetVersionExA, 4);
REPLACE_IMPORT(FindFirstFileA, 8);
REPLACE_IMPORT(FindClose, 4);
REPLACE_IMPORT(GetPrivateProfileStringA, 24);

PlatformCalls::PlatformCalls(const PlatformAnswers& toGive) {
  made.clear();
  answers = &toGive;
}

PlatformCalls::~PlatformCalls() {
  answers = nullptr;
}

const std::vector<std::string>& PlatformCalls::Made() const {
  return made;
}
