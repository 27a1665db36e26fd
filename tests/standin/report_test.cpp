// The stand-in's report: how it was started, and what its reader of dpinst.xml makes of the installer's file and of
// others.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "dpinst/dpinst_texts.h"
#include "expected_document.h"
#include "standin_process.h"

namespace {

using nlohmann::json;

struct Report {
  DWORD exitCode;
  json content;
};

Report RunStandin(StandinSetup setup) {
  const TestFolder folder;
  setup.variables["KWA_STANDIN_REPORT"] = folder.Path();
  const Standin standin(setup);
  const DWORD exitCode = standin.ExitCode();
  EXPECT_EQ(Exists(folder / "dpinst.xml") ? ReadWholeFile(folder / "dpinst.xml") : "", setup.document);
  return {exitCode, json::parse(ReadWholeFile(folder / "report.json"))};
}

const json kGerman = {
    {"dpinstTitle", "KWA Driver Installer "},
    {"welcomeTitle", "Willkommen beim KWA Marlin USB Driver Installer Wizard "},
    {"welcomeIntro",
     "Dieser Driver Installer Wizard installiert und aktualisiert die Treiber der folgenden KWA Geräte: \n"
     "Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4\n\n02/13/2014,1.0.42.0\n    "},
    {"eulaHeaderTitle", "Endbenutzer-Lizenzabkommen (EULA) "},
    {"eulaYesButton", "Ich &akzeptiere diese EULA "},
    {"eulaNoButton", "Ich akzeptiere diese EULA &nicht "},
    {"eula", "Für Geräte\r\n"},
    {"watermarkPath", "kwa.bmp"},
};

const json kEnglish = {
    {"dpinstTitle", "KWA Driver Installer "},
    {"welcomeTitle", "Welcome to the KWA Marlin USB Driver Installer Wizard "},
    {"welcomeIntro",
     "This Driver Installer Wizard will install and update drivers for these KWA devices: \n"
     "Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4\n\n02/13/2014,1.0.42.0\n    "},
    {"eulaHeaderTitle", "End User License Agreement (EULA) "},
    {"eulaYesButton", "I accept this EULA "},
    {"eulaNoButton", "I do not accept this EULA "},
    {"eula", "For devices\r\n"},
    {"watermarkPath", "kwa.bmp"},
};

TEST(StandinReport, HoldsTheTextsOfAllLanguages) {
  for (const std::string& edition : StandinEditions()) {
    for (const bool legacyMode : {false, true}) {
      const Report report = RunStandin({ExpectedDocument(legacyMode), {}, edition});
      EXPECT_EQ(report.exitCode, 1u);
      json flags = {"enableNotListedLanguages", "deleteBinaries", "forceIfDriverIsNotBetter"};
      if (legacyMode) {
        flags.push_back("legacyMode");
      }
      EXPECT_EQ(report.content["flags"], flags);
      EXPECT_EQ(report.content["languages"].size(), std::size(kwa::DpinstLanguages));
      for (const auto& [language, shown] : report.content["languages"].items()) {
        const json& expected = language == "0x0407" ? kGerman : kEnglish;
        for (const auto& [name, text] : expected.items()) {
          EXPECT_EQ(shown.value(name, ""), text) << language << " " << name;
        }
      }
    }
  }
}

TEST(StandinReport, TellsHowItWasStarted) {
  for (const std::string& edition : StandinEditions()) {
    const json report = RunStandin({"", {}, edition, {{"abc", "abc"}, {"leer \u263A", ""}}}).content;
    const std::string program = report["program"];
    EXPECT_EQ(program.substr(program.rfind('\\')), "\\standin.exe");
    EXPECT_EQ(report["commandLine"], program);
    wchar_t currentFolder[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, currentFolder);
    EXPECT_EQ(report["currentFolder"], ToUtf8(currentFolder));
    EXPECT_EQ(report["bitness"], edition == StandinEditions().front() ? 32 : 64);
    ASSERT_EQ(report["files"].size(), 3u);
    for (const json& file : report["files"]) {
      if (file["name"] == "abc") {
        EXPECT_EQ(file["size"], 3);
        EXPECT_EQ(file["sha256"], "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
      } else if (file["name"] == "leer \u263A") {
        EXPECT_EQ(file["size"], 0);
        EXPECT_EQ(file["sha256"], "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
      } else {
        EXPECT_EQ(file["name"], "standin.exe");
        EXPECT_EQ(file["size"], ReadWholeFile(edition).size());
      }
    }
  }
}

TEST(StandinReport, EndsWithTheCodeAskedFor) {
  const std::map<std::string, DWORD> codes = {
      {"0", 0}, {"010", 10}, {"0x80020001", 0x80020001}, {"1073741825", 0x40000001}};
  for (const auto& [text, code] : codes) {
    EXPECT_EQ(RunStandin({ExpectedDocument(false), {{"KWA_STANDIN_EXIT", text}}}).exitCode, code) << text;
  }
}

// The installer writes what the INF says without escaping, so its file can be any of the first four.
TEST(StandinReport, RefusesWhatIsNotWellFormedOrNotAllowed) {
  const auto with = [](const char* what, const char* by) {
    std::string document = ExpectedDocument(false);
    ReplaceAll(document, what, by);
    return document;
  };
  const std::map<std::string, std::string> licences = {{"eula_en.txt", "English"}, {"eula_de.txt", "Ger\xE4t"}};
  const struct {
    StandinSetup setup;
    const char* error;  // its beginning
  } cases[] = {
      {{with("Marlin USB", "Cut & Play")}, "dpinst.xml, line 9: "},
      {{with("02/13/2014", "<02/13/2014")}, "dpinst.xml, line "},
      {{with("Marlin USB", "Ger\xE4t")}, "dpinst.xml, line 9: "},
      {{with("Marlin USB", "\x01")}, "dpinst.xml, line 9: "},
      {{with("code=\"0x0401\"", "code=\"0x0401\" code=\"0x0402\"")}, "dpinst.xml, line "},
      {{with("</dpInst>", "")}, "dpinst.xml, line "},
      {{with("0x0809", "0x0401")}, "dpinst.xml: a language's code is no number or stands twice"},
      {{with("0x0809", "English")}, "dpinst.xml: a language's code is no number or stands twice"},
      {{ExpectedDocument(false), {}, StandinEditions().front(), {}}, "eula_en.txt: cannot be read"},
      {{ExpectedDocument(false), {}, StandinEditions().front(), licences}, "eula_de.txt: holds no UTF-8 text"},
  };
  for (const auto& [setup, error] : cases) {
    StandinSetup english = setup;
    english.variables = {{"KWA_STANDIN_LANGUAGE", "0x0409"}, {"KWA_STANDIN_EXIT", "0"}};
    const Report report = RunStandin(english);
    EXPECT_EQ(report.exitCode, 0x80010000);
    const std::string reason = report.content.value("error", "");
    EXPECT_EQ(reason.substr(0, std::string(error).size()), error);
    EXPECT_TRUE(reason.size() > std::string(error).size() || reason.back() != ' ') << "no reason";
  }
}

TEST(StandinReport, ChoosesTheLanguage) {
  const std::string listed = ExpectedDocument(false);
  std::string locked = listed;
  ReplaceAll(locked, "  <enableNotListedLanguages/>\r\n", "");
  const std::string none = "<dpinst><watermarkPath>a.bmp</watermarkPath></dpinst>";
  const std::string german = kGerman["welcomeTitle"];
  const std::string english = kEnglish["welcomeTitle"];
  const std::string ownGerman = "Willkommen bei der Treiberinstallation";
  const std::string ownEnglish = "Welcome to the driver installation";
  const struct {
    const char* language;
    std::string document;
    std::string welcomeTitle;  // "" for a refusal
  } cases[] = {
      {"0x0407", listed, german},   {"1031", locked, german},      {"0x0809", locked, english},
      {"0x0C0A", listed, english},  {"0x0c07", listed, ownGerman}, {"0x0436", listed, ownEnglish},
      {"0x0c07", locked, ""},       {"0x0436", locked, ""},        {"0x0407", none, ownGerman},
      {"0x0436", none, ownEnglish}, {"0x0436", "", ownEnglish},
  };
  for (const auto& [language, document, welcomeTitle] : cases) {
    const Report report = RunStandin({document, {{"KWA_STANDIN_LANGUAGE", language}}});
    EXPECT_EQ(report.exitCode, welcomeTitle.empty() ? 0x80010000 : 1) << language;
    EXPECT_EQ(report.content.contains("wizard") ? report.content["wizard"]["welcomeTitle"] : "", welcomeTitle)
        << language;
    EXPECT_EQ(report.content.contains("error"), welcomeTitle.empty()) << language;
  }

  const json byDefault = RunStandin({listed, {}}).content["wizard"];
  const bool userIsGerman = GetUserDefaultUILanguage() == 0x0407;
  EXPECT_EQ(byDefault["welcomeTitle"], userIsGerman ? german : english);
}

}  // namespace
