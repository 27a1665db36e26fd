#include "wizard.h"

#include <windows.h>

#include <prsht.h>

#include <commctrl.h>

#include <vector>

#include "platform.h"
#include "resource.h"

namespace kwa {
namespace {

constexpr UINT_PTR kAutoTimer = 1;
constexpr UINT_PTR kProgressTimer = 2;
constexpr unsigned kProgressSteps = 20;
constexpr unsigned kProgressTime = 1600;  // milliseconds, unless the wizard goes on by itself

struct ShownText {
  int control;
  const wchar_t* name;
};

constexpr ShownText kPageTexts[] = {
    {KWA_WELCOME_TITLE, L"welcomeTitle"}, {KWA_WELCOME_INTRO, L"welcomeIntro"},
    {KWA_WELCOME_HINT, L"welcomeHint"},   {KWA_EULA, L"eula"},
    {KWA_EULA_YES, L"eulaYesButton"},     {KWA_EULA_NO, L"eulaNoButton"},
    {KWA_STAND_IN, L"standIn"},           {KWA_FINISH_TITLE, L"finishTitle"},
    {KWA_FINISH_INTRO, L"finishIntro"},   {KWA_FINISH_HINT, L"finishHint"},
};

// The buttons of the sheet, by their identifiers in Windows. Windows would show them in its own language.
constexpr ShownText kSheetTexts[] = {{0x3023, L"back"}, {0x3024, L"next"}, {0x3025, L"finish"}, {IDCANCEL, L"cancel"}};

struct Wizard {
  WizardTexts texts;
  std::vector<std::wstring> packages;  // names of INFs
  UINT autoDelay;                      // milliseconds
  HFONT titleFont;
  unsigned progress;  // of kProgressSteps
};

// What the window of a page works with.
struct Page {
  int id;
  Wizard* wizard;
};

std::wstring Trimmed(const std::wstring& text) {
  const wchar_t kBlanks[] = L" \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == std::wstring::npos ? L"" : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

HFONT CreateTitleFont() {
  const HDC screen = GetDC(nullptr);
  const int height = -MulDiv(12, GetDeviceCaps(screen, LOGPIXELSY), 72);
  ReleaseDC(nullptr, screen);
  return CreateFontW(height, 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                     CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, L"Verdana");
}

void FillPage(HWND window, const Page& page) {
  const Wizard& wizard = *page.wizard;
  for (const ShownText& text : kPageTexts) {
    if (GetDlgItem(window, text.control) != nullptr) {
      SetDlgItemTextW(window, text.control, Trimmed(wizard.texts.at(text.name)).c_str());
    }
  }
  std::wstring packages;
  for (const std::wstring& name : wizard.packages) {
    packages += name + L"\n";
  }
  SetDlgItemTextW(window, KWA_PACKAGES, packages.c_str());
  for (const int title : {KWA_WELCOME_TITLE, KWA_FINISH_TITLE}) {
    SendDlgItemMessageW(window, title, WM_SETFONT, reinterpret_cast<WPARAM>(wizard.titleFont), FALSE);
  }
  CheckDlgButton(window, KWA_EULA_NO, BST_CHECKED);
  SendDlgItemMessageW(window, KWA_PROGRESS, PBM_SETRANGE, 0, MAKELPARAM(0, kProgressSteps));
}

// "Next" is enabled only after the licence is accepted. While packages are being installed, no button is enabled.
void SetButtons(HWND window, const Page& page) {
  const HWND sheet = GetParent(window);
  LPARAM buttons = 0;
  if (page.id == KWA_FINISH_PAGE) {
    buttons = PSWIZB_FINISH;
  } else if (page.id == KWA_WELCOME_PAGE || page.wizard->progress == kProgressSteps) {
    buttons = PSWIZB_NEXT;
  } else if (page.id == KWA_EULA_PAGE) {
    buttons = PSWIZB_BACK | (IsDlgButtonChecked(window, KWA_EULA_YES) == BST_CHECKED ? PSWIZB_NEXT : 0);
  }
  PropSheet_SetWizButtons(sheet, buttons);
  EnableWindow(GetDlgItem(sheet, IDCANCEL), page.id == KWA_WELCOME_PAGE || page.id == KWA_EULA_PAGE);
}

void ShowPage(HWND window, const Page& page) {
  const HWND sheet = GetParent(window);
  const UINT delay = page.wizard->autoDelay;
  if (!IsWindowVisible(sheet)) {
    RECT place = {};
    GetWindowRect(sheet, &place);
    SetWindowPos(sheet, nullptr, (GetSystemMetrics(SM_CXSCREEN) - place.right + place.left) / 2,
                 (GetSystemMetrics(SM_CYSCREEN) - place.bottom + place.top) / 2, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    // Without a window manager, Wine draws the caption of the active window as inactive.
    PostMessageW(sheet, WM_NCACTIVATE, TRUE, 0);
  }
  for (const ShownText& text : kSheetTexts) {
    SetDlgItemTextW(sheet, text.control, page.wizard->texts.at(text.name).c_str());
  }
  SetButtons(window, page);
  // The pages have different backgrounds, and Wine leaves parts of the old one.
  InvalidateRect(sheet, nullptr, TRUE);
  if (page.id == KWA_PROGRESS_PAGE) {
    SetTimer(window, kProgressTimer, (delay == 0 ? kProgressTime : delay) / kProgressSteps, nullptr);
  } else if (delay != 0) {
    SetTimer(window, kAutoTimer, delay, nullptr);
  }
}

void StepProgress(HWND window, const Page& page) {
  Wizard& wizard = *page.wizard;
  if (wizard.progress == kProgressSteps) {
    KillTimer(window, kProgressTimer);
    SetButtons(window, page);
    PropSheet_PressButton(GetParent(window), PSBTN_NEXT);
    return;
  }
  if (!wizard.packages.empty()) {
    const std::size_t current = wizard.progress * wizard.packages.size() / kProgressSteps;
    SetDlgItemTextW(window, KWA_PACKAGE, wizard.packages[current].c_str());
  }
  SendDlgItemMessageW(window, KWA_PROGRESS, PBM_SETPOS, ++wizard.progress, 0);
}

// Goes to the next page without the user.
void GoOn(HWND window, const Page& page) {
  KillTimer(window, kAutoTimer);
  SendDlgItemMessageW(window, KWA_EULA_YES, BM_CLICK, 0, 0);
  PropSheet_PressButton(GetParent(window), page.id == KWA_FINISH_PAGE ? PSBTN_FINISH : PSBTN_NEXT);
}

INT_PTR CALLBACK PageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    const LPARAM page = reinterpret_cast<const PROPSHEETPAGEW*>(lParam)->lParam;
    SetWindowLongPtrW(window, DWLP_USER, page);
    FillPage(window, *reinterpret_cast<const Page*>(page));
    return TRUE;
  }
  const auto* const page = reinterpret_cast<const Page*>(GetWindowLongPtrW(window, DWLP_USER));
  if (page == nullptr) {
    return FALSE;  // a message before WM_INITDIALOG
  }
  if (message == WM_COMMAND && (LOWORD(wParam) == KWA_EULA_YES || LOWORD(wParam) == KWA_EULA_NO)) {
    SetButtons(window, *page);
  } else if (message == WM_COMMAND && HIWORD(wParam) == EN_SETFOCUS) {
    // The licence cannot be edited, so it needs no caret.
    HideCaret(reinterpret_cast<HWND>(lParam));
  } else if (message == WM_TIMER && wParam == kProgressTimer) {
    StepProgress(window, *page);
  } else if (message == WM_TIMER) {
    GoOn(window, *page);
  } else if (message == WM_NOTIFY) {
    const UINT code = reinterpret_cast<const NMHDR*>(lParam)->code;
    if (code == PSN_SETACTIVE) {
      ShowPage(window, *page);
    } else if (code == PSN_KILLACTIVE) {
      KillTimer(window, kAutoTimer);
    } else if (code == PSN_QUERYCANCEL) {
      SetWindowLongPtrW(window, DWLP_MSGRESULT, page->id == KWA_PROGRESS_PAGE ? TRUE : FALSE);
      return TRUE;
    }
  }
  return FALSE;
}

}  // namespace

WizardEnd ShowWizard(const WizardTexts& texts, const std::wstring& folder, unsigned long autoDelay) {
  Wizard wizard = {texts, FileNames(folder, L"*.inf"), autoDelay, CreateTitleFont(), 0};
  const std::wstring caption = Trimmed(texts.at(L"dpinstTitle"));
  const std::wstring eulaTitle = Trimmed(texts.at(L"eulaHeaderTitle"));
  Page pages[] = {
      {KWA_WELCOME_PAGE, &wizard}, {KWA_EULA_PAGE, &wizard}, {KWA_PROGRESS_PAGE, &wizard}, {KWA_FINISH_PAGE, &wizard}};
  std::vector<PROPSHEETPAGEW> sheetPages;
  for (Page& page : pages) {
    const bool outer = page.id == KWA_WELCOME_PAGE || page.id == KWA_FINISH_PAGE;
    const bool eula = page.id == KWA_EULA_PAGE;
    if (eula && texts.count(L"eula") == 0) {
      continue;
    }
    PROPSHEETPAGEW& sheetPage = sheetPages.emplace_back();
    sheetPage.dwSize = sizeof sheetPage;
    sheetPage.dwFlags = PSP_USETITLE | (outer ? PSP_HIDEHEADER : PSP_USEHEADERTITLE | PSP_USEHEADERSUBTITLE);
    sheetPage.hInstance = GetModuleHandleW(nullptr);
    sheetPage.pszTemplate = MAKEINTRESOURCEW(page.id);
    sheetPage.pszTitle = caption.c_str();
    sheetPage.pfnDlgProc = PageProc;
    sheetPage.lParam = reinterpret_cast<LPARAM>(&page);
    sheetPage.pszHeaderTitle = eula ? eulaTitle.c_str() : texts.at(L"progressTitle").c_str();
    sheetPage.pszHeaderSubTitle = texts.at(eula ? L"eulaHint" : L"progressHint").c_str();
  }

  // Without a header bitmap, Wine draws a grey header.
  const COLORREF white = RGB(255, 255, 255);
  const HBITMAP header = CreateBitmap(1, 1, 1, 32, &white);
  PROPSHEETHEADERW sheet = {};
  sheet.dwSize = sizeof sheet;
  sheet.dwFlags = PSH_WIZARD97 | PSH_PROPSHEETPAGE | PSH_HEADER | PSH_USEHBMHEADER;
  sheet.hInstance = GetModuleHandleW(nullptr);
  sheet.nPages = static_cast<UINT>(sheetPages.size());
  sheet.ppsp = sheetPages.data();
  sheet.hbmHeader = header;
  sheet.hbmWatermark = static_cast<HBITMAP>(
      LoadImageW(nullptr, (folder + texts.at(L"watermarkPath")).c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE));
  if (sheet.hbmWatermark != nullptr) {
    sheet.dwFlags |= PSH_WATERMARK | PSH_USEHBMWATERMARK;
  }
  const INT_PTR result = PropertySheetW(&sheet);
  DeleteObject(sheet.hbmWatermark);
  DeleteObject(header);
  DeleteObject(wizard.titleFont);
  if (result < 0) {
    return WizardEnd::NotShown;
  }
  return wizard.progress == kProgressSteps ? WizardEnd::Finished : WizardEnd::Cancelled;
}

}  // namespace kwa
