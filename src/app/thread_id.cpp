#include <windows.h>

// GCC's runtime library compares threads from version 13 on, and imports GetThreadId for that. Windows Server 2003 and
// Vista introduced this function; Windows 2000 and XP do not start a program that imports it. This file defines the
// symbol that holds the address of the import, so the linker does not take it from kernel32. The program has a single
// thread, so the current thread is always the right one.
namespace {

DWORD WINAPI IdOfTheOnlyThread(HANDLE /*thread*/) {
  return GetCurrentThreadId();
}

}  // namespace

extern "C" {
extern decltype(&IdOfTheOnlyThread) const kGetThreadIdImport __asm__("__imp__GetThreadId@4");
decltype(&IdOfTheOnlyThread) const kGetThreadIdImport = IdOfTheOnlyThread;
}
