// The stand-in's wizard in real windows, by itself and as a user walks through it.

#include <windows.h>

#include <prsht.h>

#include <gtest/gtest.h>

#include "expected_document.h"
#include "resource.h"
#include "standin_process.h"

namespace {

constexpr int kBack = 0x3023;
constexpr int kNext = 0x3024;

StandinSetup German(std::map<std::string, std::string> variables = {}) {
  variables["KWA_STANDIN_LANGUAGE"] = "0x0407";
  return {ExpectedDocument(false), variables};
}

std::string ControlText(HWND page, int control) {
  return TextOf(GetDlgItem(page, control));
}

// The wizard posts itself what it does to its buttons: a state is there in a moment, or never.
bool BecomesEnabled(const Standin& standin, int button, bool enabled) {
  for (int i = 0; i < 500 && standin.StillRuns(); ++i) {
    if ((IsWindowEnabled(GetDlgItem(standin.Dialog(), button)) != FALSE) == enabled) {
      return true;
    }
  }
  return false;
}

// Posted, as a click is: Wine's property sheet notices its end only after a message from the queue.
void Press(const Standin& standin, int button) {
  PostMessageW(standin.Dialog(), PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0);
}

// Alt with a letter: the dialog's own message loop looks for the control that has it.
void PressAlt(const Standin& standin, wchar_t letter) {
  PostMessageW(standin.Dialog(), WM_SYSCHAR, letter, 1 << 29);
}

TEST(StandinWizard, WalksThroughAllPagesByItself) {
  StandinSetup setup = German({{"KWA_STANDIN_AUTO", "1000"}, {"KWA_STANDIN_EXIT", "0x40000001"}});
  setup.edition = StandinEditions().back();
  const Standin standin(setup);
  const HWND welcome = standin.PageWith(KWA_WELCOME_TITLE);
  EXPECT_EQ(TextOf(standin.Dialog()), "KWA Driver Installer");
  EXPECT_EQ(ControlText(welcome, KWA_WELCOME_TITLE), "Willkommen beim KWA Marlin USB Driver Installer Wizard");
  EXPECT_EQ(ControlText(welcome, KWA_WELCOME_INTRO),
            "Dieser Driver Installer Wizard installiert und aktualisiert die Treiber der folgenden KWA Geräte: \n"
            "Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4\n\n02/13/2014,1.0.42.0");
  const HWND eula = standin.PageWith(KWA_EULA);
  EXPECT_EQ(ControlText(eula, KWA_EULA), "Für Geräte");
  EXPECT_EQ(ControlText(eula, KWA_EULA_YES), "Ich &akzeptiere diese EULA");
  EXPECT_EQ(ControlText(eula, KWA_EULA_NO), "Ich akzeptiere diese EULA &nicht");
  const HWND progress = standin.PageWith(KWA_PROGRESS);
  EXPECT_EQ(ControlText(progress, KWA_STAND_IN), "Dies ist ein Platzhalter für DPInst: Es wird nichts installiert.");
  const HWND finish = standin.PageWith(KWA_PACKAGES);
  EXPECT_EQ(ControlText(finish, KWA_PACKAGES), "one.inf\ntwo.inf\n");
  EXPECT_EQ(standin.ExitCode(), 0x40000001u);
}

TEST(StandinWizard, ObeysTheUser) {
  const Standin standin(German({{"KWA_STANDIN_EXIT", "0x40000001"}}));
  standin.PageWith(KWA_WELCOME_TITLE);
  EXPECT_TRUE(BecomesEnabled(standin, kBack, false));
  EXPECT_TRUE(BecomesEnabled(standin, kNext, true));
  Press(standin, PSBTN_NEXT);
  const HWND eula = standin.PageWith(KWA_EULA);
  EXPECT_TRUE(BecomesEnabled(standin, kBack, true));
  EXPECT_TRUE(BecomesEnabled(standin, kNext, false));
  std::vector<int> tabOrder;
  for (HWND control = GetDlgItem(eula, KWA_EULA); tabOrder.size() < 5;) {
    tabOrder.push_back(GetDlgCtrlID(control));
    control = GetNextDlgTabItem(standin.Dialog(), control, FALSE);
  }
  EXPECT_EQ(tabOrder, (std::vector<int>{KWA_EULA, KWA_EULA_NO, kBack, IDCANCEL, KWA_EULA}));
  PressAlt(standin, L'a');
  EXPECT_TRUE(BecomesEnabled(standin, kNext, true));
  EXPECT_EQ(IsDlgButtonChecked(eula, KWA_EULA_YES), static_cast<UINT>(BST_CHECKED));
  PressAlt(standin, L'n');
  EXPECT_TRUE(BecomesEnabled(standin, kNext, false));
  EXPECT_EQ(IsDlgButtonChecked(eula, KWA_EULA_YES), static_cast<UINT>(BST_UNCHECKED));
  Press(standin, PSBTN_BACK);
  EXPECT_NE(standin.PageWith(KWA_WELCOME_TITLE), nullptr);
  Press(standin, PSBTN_CANCEL);
  EXPECT_EQ(standin.ExitCode(), 0u);
}

TEST(StandinWizard, NamesLineAndReasonOfARefusal) {
  StandinSetup setup = German();
  ReplaceAll(setup.document, "Marlin USB", "Cut & Play");
  const Standin standin(setup);
  const HWND box = standin.Dialog();
  const std::string message = ControlText(box, 0xFFFF);  // a message box's text
  EXPECT_EQ(message.substr(0, 20), "dpinst.xml, line 9: ");
  EXPECT_GT(message.size(), 20u);
  SendMessageW(box, WM_COMMAND, IDOK, 0);
  EXPECT_EQ(standin.ExitCode(), 0x80010000u);
}

}  // namespace
