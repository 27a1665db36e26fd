// dpinst.xml, byte for byte against expected/dpinst.xml, which shows it for the package that the installer carries.

#include "dpinst/dpinst_config.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "debugger_lines.h"
#include "dpinst/dpinst_document.h"
#include "expected_document.h"
#include "test_folder.h"
#include "windows_facts.h"

namespace {

constexpr char kVersion[] = "02/13/2014,1.0.42.0";
constexpr char kMarlinUsb[] = "Marlin USB";
constexpr char kMarlinUsbDevices[] = "Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4";

std::string Document(const TestFolder& folder, const char* version, const char* displayName, bool legacyMode) {
  std::FILE* const file = std::fopen((folder / "document").c_str(), "wt");
  kwa::WriteDpinstDocument(file, version, displayName, legacyMode);
  std::fclose(file);
  return ReadWholeFile(folder / "document");
}

TEST(WriteDpinstDocument, IsTheExpectedFile) {
  const TestFolder folder;
  EXPECT_EQ(Document(folder, kVersion, kMarlinUsb, false), ExpectedDocument(false));
  EXPECT_EQ(Document(folder, kVersion, kMarlinUsb, true), ExpectedDocument(true));
}

TEST(WriteDpinstDocument, TakesVersionAndNameAsTheyStand) {
  const struct {
    std::string version;
    std::string displayName;
    std::string devices;
    std::string germanDevices;
  } cases[] = {
      {"", "", "", ""},
      {"<%s%n&>", "100% %s & <b>\xC3\xA4\xE4", "", ""},
      {"1.2", "Vireo",
       "Vireo Series (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), \r\n"
       "Vireoe Series (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)",
       "Vireo Serie (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), \r\n"
       "Vireoe Serie (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)"},
  };
  const TestFolder folder;
  for (const auto& identity : cases) {
    std::string expected = ExpectedDocument(false);
    const std::size_t german = expected.find("Willkommen");
    const std::size_t afterGerman = expected.find("</language>", german);
    std::string parts[] = {expected.substr(0, german), expected.substr(german, afterGerman - german),
                           expected.substr(afterGerman)};
    expected.clear();
    for (std::string& part : parts) {
      ReplaceAll(part, kMarlinUsbDevices, &part == &parts[1] ? identity.germanDevices : identity.devices);
      ReplaceAll(part, kMarlinUsb, identity.displayName);
      ReplaceAll(part, kVersion, identity.version);
      expected += part;
    }
    EXPECT_EQ(Document(folder, identity.version.c_str(), identity.displayName.c_str(), false), expected);
  }
}

TEST(WriteDpinstConfig, ReplacesAnOlderFileAndAsksTheWindowsVersion) {
  const TestFolder folder;
  WriteWholeFile(folder / "dpinst.xml", std::string(100000, 'x'));
  kwa::WriteDpinstConfig(folder.Slashed().c_str(), kVersion, kMarlinUsb);
  EXPECT_EQ(FilesIn(folder.Path()),
            (std::map<std::string, std::string>{{"dpinst.xml", ExpectedDocument(WindowsMajorVersion() <= 5)}}));
}

TEST(WriteDpinstConfig, WritesNothingWhereItCannot) {
  const TestFolder folder;
  kwa::WriteDpinstConfig((folder / "missing\\").c_str(), kVersion, kMarlinUsb);
  EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>());

  const DebuggerLines collector;
  const std::string fits = folder.MakeFolderOfLength(249);
  kwa::WriteDpinstConfig(fits.c_str(), kVersion, kMarlinUsb);
  EXPECT_TRUE(Exists(fits + "dpinst.xml"));
  EXPECT_EQ(DebuggerLines::Lines().size(), 0U);
  kwa::WriteDpinstConfig((fits.substr(0, 200) + std::string(50, 'x')).c_str(), kVersion, kMarlinUsb);
  EXPECT_EQ(DebuggerLines::Lines().size(), 1U);
}

}  // namespace
