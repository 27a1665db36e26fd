// Takes the place of the audio driver: a kernel-mode driver that refuses to start.
#include <windows.h>

extern "C" LONG NTAPI DriverEntry(void* driverObject, void* registryPath);

LONG NTAPI DriverEntry(void*, void*) {
  const LONG kStatusNotSupported = static_cast<LONG>(0xC00000BBu);
  return kStatusNotSupported;
}
