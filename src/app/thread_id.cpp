#include <windows.h>

// From version 13 on, the part of GCC's library that every C++ program gets can compare threads and asks GetThreadId
// for it, which came with Windows Server 2003 and Vista: Windows 2000 and XP do not start a program that imports it.
// This is the slot that would hold the import's address, so the linker need not ask kernel32 for one. The program has
// one thread: the caller's is the only one that can be meant.
namespace {

DWORD WINAPI IdOfTheOnlyThread(HANDLE /*thread*/) {
  return GetCurrentThreadId();
}

}  // namespace

extern "C" {
extern decltype(&IdOfTheOnlyThread) const kGetThreadIdImport __asm__("__imp__GetThreadId@4");
decltype(&IdOfTheOnlyThread) const kGetThreadIdImport = IdOfTheOnlyThread;
}
