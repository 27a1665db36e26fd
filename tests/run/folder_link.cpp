#include "folder_link.h"

#include <windows.h>

#include <filesystem>

#include "test_folder.h"
#include "windows_facts.h"

namespace fs = std::filesystem;

namespace {

void RunCommand(const std::string& command) {
  std::string commandLine = command;  // the system may write to it
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr, &startup,
                     &process) != FALSE) {
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
}

// Wine does not tell when a program of the system below it has ended.
template <typename Condition>
bool AwaitEffect(Condition condition) {
  constexpr int kTries = 1000;
  for (int i = 0; i < kTries && !condition(); ++i) {
    Sleep(10);
  }
  return condition();
}

// A path in an existing folder as the system below Wine knows it, in quotes.
std::string UnixPath(const fs::path& path) {
  using GetUnixFileName = char*(CDECL*)(const wchar_t*);
  const auto getUnixFileName = reinterpret_cast<GetUnixFileName>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name")));
  char* const folder = getUnixFileName(path.parent_path().c_str());
  const std::string unixPath = std::string(folder == nullptr ? "" : folder) + "/" + path.filename().string();
  HeapFree(GetProcessHeap(), 0, folder);
  return "\"" + unixPath + "\"";
}

}  // namespace

FolderLink::FolderLink(const std::string& link, const std::string& target) : path(link) {
  if (IsWine()) {
    RunCommand("\\\\?\\unix\\bin\\ln -s " + UnixPath(target) + " " + UnixPath(link));
  } else {
    RunCommand("cmd /c mklink /J \"" + link + "\" \"" + target + "\"");
  }
  isMade = AwaitEffect([&] { return Exists(link); });
}

FolderLink::~FolderLink() {
  if (IsWine()) {
    // Windows programs have no way to remove one that leads nowhere.
    RunCommand("\\\\?\\unix\\bin\\rm -f " + UnixPath(path));
    // The name is free when something else can have it.
    AwaitEffect(
        [&] { return CreateDirectoryA(path.c_str(), nullptr) != FALSE || GetLastError() == ERROR_PATH_NOT_FOUND; });
  } else {
    RemoveDirectoryA(path.c_str());
  }
}
