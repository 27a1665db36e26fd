// The wizard of the stand-in for DPInst, as a user goes through it, in each edition that this Windows runs. The tests
// of whole runs check its report of the installer's dpinst.xml.

#include <windows.h>

#include <prsht.h>

#include <gtest/gtest.h>

#include "resource.h"
#include "test_folder.h"
#include "windows_facts.h"

namespace {

class Standin : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    const std::string program = folder / "standin.exe";
    ASSERT_TRUE(CopyFileA(GetParam(), program.c_str(), TRUE)) << GetParam();
    WriteWholeFile(folder / "dpinst.xml", ExpectedDocument(false));
    for (const char* const eula : {"eula_de.txt", "eula_en.txt"}) {
      WriteWholeFile(folder / eula, std::string("\xEF\xBB\xBF") + "Für Geräte\r\n");
    }
    WriteWholeFile(folder / "marlin.inf", "");
    SetEnvironmentVariableA("KWA_STANDIN_LANGUAGE", "0x0407");
    SetEnvironmentVariableA("KWA_STANDIN_EXIT", "0x40000001");
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    std::string line = program;
    ASSERT_TRUE(CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
  }
  // Waits until the program ends, and kills it if it hangs.
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

  // Posts the message, as a click does: Wine's property sheet notices its end only after a message from the queue.
  void Press(WPARAM button) const { PostMessageW(dialog, PSM_PRESSBUTTON, button, 0); }

  const TestFolder folder{};
  PROCESS_INFORMATION process = {};
  HWND dialog = nullptr;
};

TEST_P(Standin, ObeysTheUser) {
  EXPECT_TRUE(Shows(KWA_WELCOME_TITLE, L"Willkommen beim KWA Marlin USB Driver Installer Wizard"));
  Press(PSBTN_NEXT);
  EXPECT_TRUE(Shows(KWA_EULA, L"F\u00FCr Ger\u00E4te"));
  EXPECT_TRUE(Shows(KWA_EULA_YES, L"Ich &akzeptiere diese EULA"));
  PostMessageW(dialog, WM_SYSCHAR, L'a', 1 << 29);  // Alt and the underlined letter of "accept"
  Press(PSBTN_NEXT);
  EXPECT_TRUE(Shows(KWA_STAND_IN, L"Dies ist ein Platzhalter f\u00FCr DPInst: Es wird nichts installiert."));
  EXPECT_TRUE(Shows(KWA_PACKAGES, L"marlin.inf\n"));
  Press(PSBTN_FINISH);
  EXPECT_EQ(ExitCode(), 0x40000001U);
}

const char* const kEditions[] = {KWA_STANDIN_X86, KWA_STANDIN_X64};
// cppcheck-suppress syntaxError // cppcheck does not know empty macro arguments
INSTANTIATE_TEST_SUITE_P(, Standin, testing::ValuesIn(kEditions, kEditions + (Is64Bit() ? 2 : 1)));

}  // namespace
