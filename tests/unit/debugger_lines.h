#pragma once

#include <windows.h>

#include <string>
#include <vector>

// Collects what this process tells its debugger while the object lives. Only one at a time.
class DebuggerLines {
 public:
  DebuggerLines() : handler(AddVectoredExceptionHandler(1, Collect)) { Lines().clear(); }
  ~DebuggerLines() { RemoveVectoredExceptionHandler(handler); }
  DebuggerLines(const DebuggerLines&) = delete;
  DebuggerLines& operator=(const DebuggerLines&) = delete;

  static std::vector<std::string>& Lines() {
    static std::vector<std::string> lines;
    return lines;
  }

 private:
  // OutputDebugStringA raises this exception with the length, terminator counted, and the address of its text.
  static LONG CALLBACK Collect(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != DBG_PRINTEXCEPTION_C) {
      return EXCEPTION_CONTINUE_SEARCH;
    }
    Lines().emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]),
                         record.ExceptionInformation[0] - 1);
    return EXCEPTION_CONTINUE_EXECUTION;
  }

  void* handler;
};
