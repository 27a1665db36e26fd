// Takes the place of the ASIO driver library: a COM server that registers nothing and has no classes.
#include <objbase.h>

STDAPI DllRegisterServer() {
  return S_OK;
}

STDAPI DllUnregisterServer() {
  return S_OK;
}

STDAPI DllCanUnloadNow() {
  return S_OK;
}

STDAPI DllGetClassObject(REFCLSID, REFIID, LPVOID* object) {
  *object = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}
