// The stand-in for DPInst in each edition that this Windows runs: its wizard as a user walks through it, and the report
// of what its reader of dpinst.xml made of the installer's file.

#include <windows.h>

#include <prsht.h>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "expected_document.h"
#include "resource.h"
#include "test_folder.h"
#include "windows_facts.h"

namespace {

constexpr char kMark[] = "\xEF\xBB\xBF";

class Standin : public testing::TestWithParam<const char*> {
 protected:
  void Start(const char* report) {
    const std::string program = folder / "standin.exe";
    ASSERT_TRUE(CopyFileA(GetParam(), program.c_str(), TRUE)) << GetParam();
    WriteWholeFile(folder / "dpinst.xml", ExpectedDocument(false));
    WriteWholeFile(folder / "eula_de.txt", std::string(kMark) + "Für Geräte\r\n");
    WriteWholeFile(folder / "eula_en.txt", std::string(kMark) + "For devices\r\n");
    WriteWholeFile(folder / "marlin.inf", "");
    SetEnvironmentVariableA("KWA_STANDIN_LANGUAGE", "0x0407");
    SetEnvironmentVariableA("KWA_STANDIN_EXIT", "0x40000001");
    SetEnvironmentVariableA("KWA_STANDIN_REPORT", report);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    std::string line = program;
    ASSERT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
  }
  // Waits for its end, and ends it where it stands still.
  DWORD ExitCode() const {
    DWORD code = 0;
    WaitForSingleObject(process.hProcess, 20000);
    TerminateProcess(process.hProcess, 99);
    GetExitCodeProcess(process.hProcess, &code);
    return code;
  }

  // Waits until the wizard shows a page that holds the control with this text; a page is a child of the dialog.
  bool Shows(int control, const std::wstring& text) {
    for (int tries = 0; tries < 1000 && WaitForSingleObject(process.hProcess, 20) == WAIT_TIMEOUT; ++tries) {
      for (HWND window = nullptr; (window = FindWindowExA(nullptr, window, "#32770", nullptr)) != nullptr;) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        dialog = owner == process.dwProcessId ? window : dialog;
      }
      for (HWND page = GetWindow(dialog, GW_CHILD); page != nullptr; page = GetWindow(page, GW_HWNDNEXT)) {
        wchar_t shown[512] = {};
        SendDlgItemMessageW(page, control, WM_GETTEXT, 512, reinterpret_cast<LPARAM>(shown));
        if (IsWindowVisible(page) != FALSE && text == shown) {
          return true;
        }
      }
    }
    return false;
  }

  // Posted, as a click is: Wine's property sheet notices its end only after a message from the queue.
  void Press(WPARAM button) const { PostMessageW(dialog, PSM_PRESSBUTTON, button, 0); }

  const TestFolder folder{};
  PROCESS_INFORMATION process = {};
  HWND dialog = nullptr;
};

TEST_P(Standin, ReportsTheTextsOfAllLanguages) {
  Start(folder.MakeFolder("report").c_str());
  EXPECT_EQ(ExitCode(), 0x40000001U);
  const nlohmann::json report = nlohmann::json::parse(ReadWholeFile(folder / "report\\report.json"));
  EXPECT_EQ(report["flags"],
            (nlohmann::json{"enableNotListedLanguages", "deleteBinaries", "forceIfDriverIsNotBetter"}));
  EXPECT_EQ(report["languages"].size(), 25U);
  EXPECT_EQ(report["languages"]["0x0407"]["eula"], "Für Geräte\r\n");
  EXPECT_EQ(report["languages"]["0x0809"]["eulaNoButton"], "I do not accept this EULA ");
  EXPECT_EQ(report["wizard"]["welcomeTitle"], "Willkommen beim KWA Marlin USB Driver Installer Wizard ");
}

TEST_P(Standin, ObeysTheUser) {
  Start(nullptr);
  EXPECT_TRUE(Shows(KWA_WELCOME_TITLE, L"Willkommen beim KWA Marlin USB Driver Installer Wizard"));
  Press(PSBTN_NEXT);
  EXPECT_TRUE(Shows(KWA_EULA, L"F\u00FCr Ger\u00E4te"));
  EXPECT_TRUE(Shows(KWA_EULA_YES, L"Ich &akzeptiere diese EULA"));
  PostMessageW(dialog, WM_SYSCHAR, L'a', 1 << 29);  // Alt with the letter that accepts
  Press(PSBTN_NEXT);
  EXPECT_TRUE(Shows(KWA_STAND_IN, L"Dies ist ein Platzhalter f\u00FCr DPInst: Es wird nichts installiert."));
  EXPECT_TRUE(Shows(KWA_PACKAGES, L"marlin.inf\n"));
  Press(PSBTN_FINISH);
  EXPECT_EQ(ExitCode(), 0x40000001U);
}

const char* const kEditions[] = {KWA_STANDIN_X86, KWA_STANDIN_X64};
// cppcheck-suppress syntaxError // it does not know an empty argument of a macro
INSTANTIATE_TEST_SUITE_P(, Standin, testing::ValuesIn(kEditions, kEditions + (Is64Bit() ? 2 : 1)));

}  // namespace
