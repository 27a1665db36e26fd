#include "standin_process.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "windows_facts.h"

std::vector<std::string> StandinEditions() {
  std::vector<std::string> editions = {KWA_STANDIN_X86};
  if (Is64Bit()) {
    editions.emplace_back(KWA_STANDIN_X64);
  }
  return editions;
}

Standin::Standin(const StandinSetup& setup) {
  std::string commandLine = folder / "standin.exe";
  EXPECT_TRUE(CopyFileA(setup.edition.c_str(), commandLine.c_str(), TRUE)) << setup.edition;
  for (const auto& [name, bytes] : setup.files) {
    std::ofstream(std::filesystem::path(folder.Path()) / std::filesystem::u8path(name), std::ios::binary) << bytes;
  }
  if (!setup.document.empty()) {
    WriteWholeFile(folder / "dpinst.xml", setup.document);
  }
  for (const auto& [name, value] : setup.variables) {
    SetEnvironmentVariableA(name.c_str(), value.c_str());
  }
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  EXPECT_TRUE(
      CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
  for (const auto& [name, value] : setup.variables) {
    SetEnvironmentVariableA(name.c_str(), nullptr);
  }
}

Standin::~Standin() {
  TerminateProcess(process.hProcess, 99);  // runs only where a test has failed: the others wait for its end
  WaitForSingleObject(process.hProcess, INFINITE);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

DWORD Standin::ExitCode() const {
  DWORD code = 0;
  WaitForSingleObject(process.hProcess, INFINITE);
  GetExitCodeProcess(process.hProcess, &code);
  return code;
}

HWND Standin::Dialog() const {
  do {
    for (HWND window = nullptr; (window = FindWindowExA(nullptr, window, "#32770", nullptr)) != nullptr;) {
      DWORD owner = 0;
      GetWindowThreadProcessId(window, &owner);
      if (owner == process.dwProcessId && IsWindowVisible(window)) {
        return window;
      }
    }
  } while (StillRuns());
  return nullptr;
}

HWND Standin::PageWith(int control) const {
  do {
    for (HWND page = GetWindow(Dialog(), GW_CHILD); page != nullptr; page = GetWindow(page, GW_HWNDNEXT)) {
      if (IsWindowVisible(page) && GetDlgItem(page, control) != nullptr) {
        return page;
      }
    }
  } while (StillRuns());
  return nullptr;
}

std::string ToUtf8(const std::wstring& text) {
  return std::filesystem::path(text).u8string();
}

std::string TextOf(HWND window) {
  wchar_t text[512] = {};
  SendMessageW(window, WM_GETTEXT, 512, reinterpret_cast<LPARAM>(text));
  return ToUtf8(text);
}
