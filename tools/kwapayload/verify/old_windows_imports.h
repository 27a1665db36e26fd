#pragma once

#include <map>
#include <string>
#include <string_view>

// What an installer that starts on Windows 2000 (service pack 4) and XP may import: functions that both have, of the
// libraries that come with every Windows and are never looked for beside the program. The installer's code needs some,
// the compiler's start-up code the others; neither uses all. Before a name is added here, make sure that Windows 2000
// exports it: today's Windows and Wine do not tell. Microsoft's pages do not say it any more, either, but:
//   kernel32  a page that asks for _WIN32_WINNT 0x0400 or 0x0500 means Windows NT 4.0 or 2000: TryEnterCriticalSection,
//             0x0400. GetThreadId asks for 0x0502, Windows Server 2003
//   msvcrt    MinGW-w64 sorts its list (mingw-w64-crt/lib-common/msvcrt.def.in) by the version that brought a name; all
//             below are in its oldest part, Visual C++ 4.2. For _ismbblead and strtoul, the reference of Visual C++ 6.0
//             says the same: Windows NT, from MSVCRT.DLL

namespace kwa {

// By the upper-case name of the library, the functions in alphabetical order, with a blank before and after each.
const std::map<std::string, std::string_view> kOldWindowsFunctions = {
    {"KERNEL32.DLL",
     " CloseHandle CreateDirectoryA CreateFileA CreateMutexA CreateProcessA CreateSemaphoreA"
     " CreateSemaphoreW DeleteCriticalSection DuplicateHandle EnterCriticalSection ExitProcess FindClose"
     " FindFirstFileA FormatMessageA FreeLibrary GetCommandLineA GetCurrentProcess GetCurrentProcessId"
     " GetCurrentThread GetCurrentThreadId GetExitCodeProcess GetExitCodeThread GetLastError"
     " GetModuleFileNameA GetModuleHandleA GetModuleHandleW GetPrivateProfileStringA GetProcAddress"
     " GetProcessHeap GetStartupInfoA GetSystemTimeAsFileTime GetTickCount GetVersionExA HeapAlloc HeapFree"
     " InitializeCriticalSection InterlockedCompareExchange InterlockedDecrement InterlockedExchange"
     " InterlockedIncrement IsDBCSLeadByteEx LeaveCriticalSection LoadLibraryA LoadLibraryW LocalFree"
     " MultiByteToWideChar OutputDebugStringA QueryPerformanceCounter RaiseException ReleaseMutex"
     " ReleaseSemaphore RtlUnwind SetLastError SetUnhandledExceptionFilter Sleep TerminateProcess TlsAlloc"
     " TlsFree TlsGetValue TlsSetValue TryEnterCriticalSection UnhandledExceptionFilter VirtualProtect"
     " VirtualQuery WaitForSingleObject WideCharToMultiByte "},
    {"MSVCRT.DLL",
     " __dllonexit __getmainargs __initenv __p__acmdln __p__commode __p__environ __p__fmode __set_app_type"
     " __setusermatherr _amsg_exit _cexit _close _controlfp _errno _except_handler3 _exit _fmode _initterm"
     " _iob _ismbblead _lock _onexit _read _snprintf _unlock _vsnprintf abort atexit calloc exit fclose"
     " fflush fopen fprintf fputc fputs fread free fwrite getenv malloc memchr memcmp memcpy memmove memset"
     " realloc signal sprintf strcat strchr strcmp strcpy strerror strlen strncmp strncpy strstr strtoul"
     " vfprintf "},
    {"SHELL32.DLL", " SHFileOperationA "},
};

}  // namespace kwa
