#include "app/windows_bitness.h"

#include <windows.h>

namespace kwa {

int Is64BitWindows() {
  const HMODULE kernel = GetModuleHandleA("kernel32.dll");
  if (kernel == nullptr) {
    return 0;
  }
  // Looked up by name: Windows 2000 lacks it.
  using GetSystemWow64DirectoryFunction = UINT(WINAPI*)(LPWSTR, UINT);
  const auto getSystemWow64Directory = reinterpret_cast<GetSystemWow64DirectoryFunction>(
      reinterpret_cast<void*>(GetProcAddress(kernel, "GetSystemWow64DirectoryW")));
  if (getSystemWow64Directory == nullptr) {
    return 0;
  }
  // Only whether the call succeeds matters; the folder's name is never read.
  constexpr UINT kCapacity = 260;
  WCHAR folder[kCapacity];
  if (getSystemWow64Directory(folder, kCapacity) != 0) {
    return 1;
  }
  // 32-bit Windows answers with this one error; any other comes from a Windows that has the folder.
  return GetLastError() == ERROR_CALL_NOT_IMPLEMENTED ? 0 : 1;
}

}  // namespace kwa
