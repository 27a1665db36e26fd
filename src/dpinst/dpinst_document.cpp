#include "dpinst/dpinst_document.h"

#include "dpinst/device_families.h"
#include "dpinst/dpinst_texts.h"

namespace kwa {
namespace {

void WriteLanguage(std::FILE* stream, std::uint32_t language, const char* version, const char* displayName) {
  const bool german = language == kGermanLanguage;
  const DpinstTexts& texts = german ? kGermanTexts : kEnglishTexts;
  std::fprintf(stream, "\n");
  std::fprintf(stream, "  <language code=\"0x0%x\">\n", static_cast<unsigned>(language));
  std::fprintf(stream, "    <dpinstTitle>KWA Driver Installer </dpinstTitle>\n");
  std::fprintf(stream, texts.welcomeTitle, displayName);
  std::fprintf(stream, texts.welcomeIntroHead, kUmlautA);
  WriteDeviceList(stream, displayName, version, german ? 1 : 0);
  std::fprintf(stream, "    </welcomeIntro>\n");
  std::fprintf(stream, "%s", texts.eulaHeaderTitle);
  std::fprintf(stream, "%s", texts.eulaYesButton);
  std::fprintf(stream, "%s", texts.eulaNoButton);
  std::fprintf(stream, "%s", texts.eula);
  std::fprintf(stream, "  </language>\n");
}

}  // namespace

void WriteDpinstDocument(std::FILE* stream, const char* version, const char* displayName, bool legacyMode) {
  std::fprintf(stream, "<?xml version=\"1.0\"?>\n");
  std::fprintf(stream, "<dpInst>\n");
  std::fprintf(stream, "  <enableNotListedLanguages/>\n");
  std::fprintf(stream, "  <deleteBinaries/>\n");
  std::fprintf(stream, "  <forceIfDriverIsNotBetter/>\n");
  if (legacyMode) {
    std::fprintf(stream, "  <legacyMode/>\n");
  }
  for (const std::uint32_t language : DpinstLanguages) {
    WriteLanguage(stream, language, version, displayName);
  }
  std::fprintf(stream, "  <watermarkPath>kwa.bmp</watermarkPath>\n");
  std::fprintf(stream, "</dpInst>\n");
}

}  // namespace kwa
