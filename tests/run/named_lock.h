#pragma once

#include <windows.h>

// Held by one test of all that run at the same time on this Windows.
class NamedLock {
 public:
  explicit NamedLock(const char* name) : mutex(CreateMutexA(nullptr, FALSE, name)) {
    WaitForSingleObject(mutex, INFINITE);
  }
  ~NamedLock() {
    ReleaseMutex(mutex);
    CloseHandle(mutex);
  }
  NamedLock(const NamedLock&) = delete;
  NamedLock& operator=(const NamedLock&) = delete;

 private:
  HANDLE mutex;
};
