// Takes the place of the settings program and of the mixer: a Windows program that ends at once.
#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  return 0;
}
