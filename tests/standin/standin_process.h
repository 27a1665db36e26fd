#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "test_folder.h"

// The stand-in's editions that this Windows can run.
std::vector<std::string> StandinEditions();

struct StandinSetup {
  std::string document = {};                          // its dpinst.xml; "" for none
  std::map<std::string, std::string> variables = {};  // of its environment
  std::string edition = StandinEditions().front();
  // What else lies in its folder: contents by name in UTF-8.
  std::map<std::string, std::string> files = {{"eula_de.txt",
                                               "\xEF\xBB\xBF"
                                               "Für Geräte\r\n"},
                                              {"eula_en.txt",
                                               "\xEF\xBB\xBF"
                                               "For devices\r\n"},
                                              {"one.inf", ""},
                                              {"two.inf", ""}};
};

// A stand-in that runs in a folder of its own.
class Standin {
 public:
  explicit Standin(const StandinSetup& setup);
  ~Standin();
  Standin(const Standin&) = delete;
  Standin& operator=(const Standin&) = delete;

  // Waits for its end.
  DWORD ExitCode() const;

  // Waits for its dialog; null when it ends without one. A wizard's pages are the dialog's children.
  HWND Dialog() const;

  // Waits until a page that holds the control is shown; null when the process ends without it.
  HWND PageWith(int control) const;

  // Waits a moment.
  bool StillRuns() const { return WaitForSingleObject(process.hProcess, 20) == WAIT_TIMEOUT; }

  TestFolder folder;

 private:
  PROCESS_INFORMATION process = {};
};

std::string ToUtf8(const std::wstring& text);

// A window's text in UTF-8.
std::string TextOf(HWND window);
