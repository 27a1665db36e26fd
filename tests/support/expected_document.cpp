#include "expected_document.h"

#include "test_folder.h"

std::string ExpectedDocument(bool legacyMode) {
  std::string document = ReadWholeFile(KWA_EXPECTED_DIR "/dpinst.xml");
  if (legacyMode) {
    constexpr char kBefore[] = "  <forceIfDriverIsNotBetter/>\r\n";
    ReplaceAll(document, kBefore, std::string(kBefore) + "  <legacyMode/>\r\n");
  }
  return document;
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
}
