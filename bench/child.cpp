// Stands in DPInst's place while a run is timed: a program that ends at once, without even a runtime library to start.
#include <windows.h>

extern "C" void WinMainCRTStartup() {
  ExitProcess(0);
}
