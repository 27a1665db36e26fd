#include "support/last_error.h"

#include <windows.h>

namespace kwa {

void ReportLastError() {
  const DWORD error = GetLastError();
  char* text = nullptr;
  const DWORD length =
      FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, error,
                     MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&text), 0, nullptr);
  if (length != 0) {
    LocalFree(text);
  }
}

}  // namespace kwa
