// The stand-in for DPInst, which the sample payload carries as dpinst.exe and dpinst64.exe. It reads dpinst.xml in its
// own folder and shows the wizard that DPInst would show. It installs nothing.
//
// Environment variables:
//   KWA_STANDIN_REPORT=FOLDER      shows nothing; writes report.json and a copy of dpinst.xml into the folder. The
//                                  report has the way the program was started, the files in its folder, the flags and
//                                  the wizard's texts in each language, or the error
//   KWA_STANDIN_LANGUAGE=0x0407    the user's language (default: the language of Windows)
//   KWA_STANDIN_AUTO=MILLISECONDS  goes through the wizard without the user, stays that long on each page, and shows no
//                                  message
//   KWA_STANDIN_EXIT=CODE          the exit code after the last page or a report, decimal or 0x… (default: 1)
//
// Exit codes: 0x00000001 after the last page, as if one package was installed; 0 after Cancel; 0x80010000 when it
// refuses dpinst.xml, as if one package could not be installed; 0xFFFFFFFF when it cannot write the report or show a
// window.

#include <windows.h>

#include <cstdio>
#include <stdexcept>

#include "platform.h"
#include "report.h"
#include "wizard.h"
#include "wizard_texts.h"

namespace kwa {
namespace {

using nlohmann::ordered_json;

constexpr unsigned long kCancelled = 0x00000000;
constexpr unsigned long kOnePackageInstalled = 0x00000001;
constexpr unsigned long kOnePackageRefused = 0x80010000;
constexpr unsigned long kFailed = 0xFFFFFFFF;

// The folder of the program, with a separator at the end.
std::wstring OwnFolder() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::wstring program = path;
  return program.substr(0, program.rfind(L'\\') + 1);
}

unsigned long EnvironmentNumber(const wchar_t* name, unsigned long byDefault) {
  return ParseNumber(Environment(name)).value_or(byDefault);
}

ordered_json Describe(const WizardTexts& texts) {
  ordered_json described;
  for (const auto& [name, text] : texts) {
    described[ToUtf8(name)] = ToUtf8(text);
  }
  return described;
}

// Reads dpinst.xml into the report and returns the wizard's texts. Throws std::runtime_error when dpinst.xml is
// refused.
WizardTexts ReadConfiguration(const std::wstring& ownFolder, unsigned long language, ordered_json* report) {
  const XmlElement root = ReadXmlFile(ownFolder + L"dpinst.xml");
  (*report)["flags"] = ordered_json::array();
  for (const std::wstring& flag : ReadFlags(root)) {
    (*report)["flags"].push_back(ToUtf8(flag));
  }
  const WizardTexts texts = ChooseTexts(root, ownFolder, language);
  (*report)["wizard"] = Describe(texts);
  for (const XmlElement& child : root.children) {
    if (child.name == L"language") {
      const std::wstring& code = child.attributes.at(L"code");
      (*report)["languages"][ToUtf8(code)] = Describe(ChooseTexts(root, ownFolder, *ParseNumber(code)));
    }
  }
  return texts;
}

unsigned long Run() {
  const std::wstring ownFolder = OwnFolder();
  const std::wstring reportFolder = Environment(L"KWA_STANDIN_REPORT");
  const unsigned long language = EnvironmentNumber(L"KWA_STANDIN_LANGUAGE", GetUserDefaultUILanguage());
  const unsigned long autoDelay = EnvironmentNumber(L"KWA_STANDIN_AUTO", 0);
  const unsigned long endCode = EnvironmentNumber(L"KWA_STANDIN_EXIT", kOnePackageInstalled);

  ordered_json report;
  if (!reportFolder.empty()) {
    report = DescribeRun(ownFolder);
  }
  WizardTexts texts;
  std::string error;
  try {
    texts = ReadConfiguration(ownFolder, language, &report);
  } catch (const std::runtime_error& refusal) {
    error = refusal.what();
    report["error"] = error;
  }

  if (!reportFolder.empty()) {
    if (!WriteReport(report, ownFolder, reportFolder)) {
      std::fprintf(stderr, "standin: %s: cannot write the report\n", ToUtf8(reportFolder).c_str());
      return kFailed;
    }
    return error.empty() ? endCode : kOnePackageRefused;
  }
  if (!error.empty()) {
    std::fprintf(stderr, "standin: %s\n", error.c_str());
    if (autoDelay == 0) {
      MessageBoxW(nullptr, FromUtf8(error).c_str(), OwnTexts(language)[L"dpinstTitle"].c_str(), MB_OK | MB_ICONERROR);
    }
    return kOnePackageRefused;
  }
  switch (ShowWizard(texts, ownFolder, autoDelay)) {
    case WizardEnd::Finished:
      return endCode;
    case WizardEnd::Cancelled:
      return kCancelled;
    default:
      std::fprintf(stderr, "standin: cannot show a window\n");
      return kFailed;
  }
}

}  // namespace
}  // namespace kwa

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*showCommand*/) {
  if (FAILED(CoInitialize(nullptr))) {
    return static_cast<int>(kwa::kFailed);
  }
  const unsigned long code = kwa::Run();
  CoUninitialize();
  return static_cast<int>(code);
}
