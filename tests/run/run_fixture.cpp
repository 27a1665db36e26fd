#include "run_fixture.h"

#include <wincrypt.h>

#include <cstring>

#include "windows_facts.h"

namespace {

// Closes the shell's message after a failed deletion, and the runtime's message after an abnormal end.
int CloseMessageBoxes(DWORD processId) {
  int count = 0;
  constexpr char kDialogClass[] = "#32770";
  for (HWND window = FindWindowExA(nullptr, nullptr, kDialogClass, nullptr); window != nullptr;
       window = FindWindowExA(nullptr, window, kDialogClass, nullptr)) {
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == processId && IsWindowVisible(window) != FALSE) {
      ++count;
      PostMessageA(window, WM_COMMAND, IDOK, 0);
      PostMessageA(window, WM_CLOSE, 0, 0);
    }
  }
  return count;
}

// Debugs a program until it ends, to see its debug output and all 32 bits of its exit status. Does not debug the
// programs that it starts.
void DebugToEnd(const PROCESS_INFORMATION& process, RunResult* result) {
  constexpr DWORD kLookAroundMilliseconds = 5;
  for (DEBUG_EVENT event = {}; event.dwDebugEventCode != EXIT_PROCESS_DEBUG_EVENT;) {
    if (WaitForDebugEvent(&event, kLookAroundMilliseconds) == FALSE) {
      result->messageBoxes += CloseMessageBoxes(process.dwProcessId);
      continue;
    }
    DWORD answer = DBG_CONTINUE;
    if (event.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT) {
      CloseHandle(event.u.CreateProcessInfo.hFile);
    } else if (event.dwDebugEventCode == LOAD_DLL_DEBUG_EVENT) {
      CloseHandle(event.u.LoadDll.hFile);
    } else if (event.dwDebugEventCode == OUTPUT_DEBUG_STRING_EVENT) {
      std::string text(event.u.DebugString.nDebugStringLength, '\0');
      ReadProcessMemory(process.hProcess, event.u.DebugString.lpDebugStringData, text.data(), text.size(), nullptr);
      // Windows may write other lines.
      result->invalidParameterLines +=
          std::strcmp(text.c_str(), "Invalid parameter passed to C runtime function.\n") == 0 ? 1 : 0;
    } else if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT &&
               event.u.Exception.ExceptionRecord.ExceptionCode != EXCEPTION_BREAKPOINT) {
      answer = DBG_EXCEPTION_NOT_HANDLED;
    } else if (event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT) {
      result->exitStatus = event.u.ExitProcess.dwExitCode;
    }
    ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
  }
}

void ReadReport(const std::string& folder, RunResult* result) {
  result->report = nlohmann::json::parse(ReadWholeFile(folder + "\\report.json"));
  for (const nlohmann::json& file : result->report.at("files")) {
    result->files[file.at("name")] =
        std::to_string(file.at("size").get<std::uint64_t>()) + " " + file.at("sha256").get<std::string>();
  }
  if (std::filesystem::exists(folder + "\\dpinst.xml")) {
    result->document = ReadWholeFile(folder + "\\dpinst.xml");
  }
}

}  // namespace

RunResult InstallerRun::RunIn(const std::string& startFolder, const std::optional<std::string>& value) const {
  DeleteFileA((reports + "\\report.json").c_str());
  SetEnvironmentVariableA("TEMP", value ? value->c_str() : nullptr);
  SetEnvironmentVariableA("KWA_STANDIN_REPORT", reports.c_str());
  SetEnvironmentVariableA("KWA_STANDIN_EXIT", "0x80010000");  // the installer must not return this
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  std::string commandLine = "\"" + program + "\" /never read";
  PROCESS_INFORMATION process = {};
  RunResult result;
  if (CreateProcessA(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, DEBUG_ONLY_THIS_PROCESS, nullptr,
                     startFolder.c_str(), &startup, &process) == FALSE) {
    ADD_FAILURE() << program << " did not start: error " << GetLastError();
    return result;
  }
  DebugToEnd(process, &result);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  if (std::filesystem::exists(reports + "\\report.json")) {
    ReadReport(reports, &result);
  }
  return result;
}

RunResult InstallerRun::RunChanged(const InstallerImage& image) {
  program = folder / "changed.exe";
  WriteWholeFile(program, image.Bytes());
  const RunResult result = Run();
  program = KWA_INSTALLER;
  return result;
}

const char* DpinstName() {
  return Is64Bit() ? "dpinst64.exe" : "dpinst.exe";
}

std::string Fingerprint(const std::string& contents) {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  BYTE digest[32] = {};
  DWORD digestSize = sizeof digest;
  const auto* const bytes = reinterpret_cast<const BYTE*>(contents.data());
  EXPECT_TRUE(CryptAcquireContextA(&provider, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
  EXPECT_TRUE(CryptCreateHash(provider, CALG_SHA_256, 0, 0, &hash));
  EXPECT_TRUE(CryptHashData(hash, bytes, static_cast<DWORD>(contents.size()), 0));
  EXPECT_TRUE(CryptGetHashParam(hash, HP_HASHVAL, digest, &digestSize, 0));
  CryptDestroyHash(hash);
  CryptReleaseContext(provider, 0);
  std::string text = std::to_string(contents.size()) + " ";
  for (const BYTE part : digest) {
    constexpr char kDigits[] = "0123456789abcdef";
    text += {kDigits[part >> 4], kDigits[part & 15]};
  }
  return text;
}

std::map<std::string, std::string> ExpectedFiles(const std::string& document) {
  std::map<std::string, std::string> files = {{"dpinst.xml", Fingerprint(document)}};
  for (const char* const archive : {"/a", "/b"}) {
    for (const std::string& name : NamesIn(std::string(KWA_PAYLOAD_DIR) + archive)) {
      files[name] = Fingerprint(ReadWholeFile(std::string(KWA_PAYLOAD_DIR) + archive + "/" + name));
    }
  }
  return files;
}
