// dpinst.xml, byte for byte against expected/dpinst.xml, which shows it for the package that the installer carries.

#include "dpinst/dpinst_config.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "dpinst/dpinst_document.h"
#include "test_folder.h"
#include "windows_facts.h"

namespace {

constexpr char kVersion[] = "02/13/2014,1.0.42.0";
constexpr char kMarlinUsb[] = "Marlin USB";

TEST(WriteDpinstDocument, TakesVersionAndNameAsTheyStand) {
  constexpr char kOddVersion[] = "<%s%n&>";
  constexpr char kOddName[] = "100% Vireo %s & <b>\xC3\xA4\xE4";
  std::string expected = ExpectedDocument(true);
  ReplaceAll(expected, "Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4",
             "Vireo Series (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), \r\n"
             "Vireoe Series (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)");
  ReplaceAll(expected, kMarlinUsb, kOddName);
  ReplaceAll(expected, kVersion, kOddVersion);
  const std::size_t german = expected.find("Willkommen");
  std::string inGerman = expected.substr(german, expected.find("</language>", german) - german);
  const std::size_t size = inGerman.size();
  ReplaceAll(inGerman, "Series", "Serie");
  expected.replace(german, size, inGerman);

  const TestFolder folder;
  std::FILE* const file = std::fopen((folder / "document").c_str(), "wt");
  kwa::WriteDpinstDocument(file, kOddVersion, kOddName, true);
  std::fclose(file);
  EXPECT_EQ(ReadWholeFile(folder / "document"), expected);
}

TEST(WriteDpinstConfig, ReplacesAnOlderFileAndNeedsItsFolder) {
  const TestFolder folder;
  WriteWholeFile(folder / "dpinst.xml", std::string(100000, 'x'));
  kwa::WriteDpinstConfig(folder.Slashed().c_str(), kVersion, kMarlinUsb);
  EXPECT_EQ(ReadWholeFile(folder / "dpinst.xml"), ExpectedDocument());
  kwa::WriteDpinstConfig((folder / "missing\\").c_str(), kVersion, kMarlinUsb);
  EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"dpinst.xml"});
}

}  // namespace
