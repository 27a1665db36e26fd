// The welcome page's device list for every family, and the family of a name with several keys. dpinst.xml, compared
// byte for byte with expected/dpinst.xml, which is that of the sample payload.

#include "dpinst/dpinst_config.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "dpinst/device_families.h"
#include "dpinst/dpinst_document.h"
#include "windows_facts.h"

namespace {

constexpr char kMadi[] = "Osprey Q2, Osprey Q3, Tern K4 (Update Mode)";
constexpr char kUsb[] = "Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4";
constexpr char kMarlin[] = "Marlin T1, Marlin T2, Marlin R2, Marlin R3, Marlin R4";
constexpr char kVireoeQx[] = "Vireoe Z9, Osprey Q2";
constexpr char kVireo[] =
    "Vireo Series (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), \n"
    "Vireoe Series (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)";
constexpr char kVireoGerman[] =
    "Vireo Serie (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), \n"
    "Vireoe Serie (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)";

const struct {
  const char* displayName;
  const char* english;
  const char* german = english;
} kCases[] = {
    {"The OspreyNET drivers", "Osprey Q1"},
    {"MADI", kMadi},
    {"USB", kUsb},
    {"Marlin", kMarlin},
    {"Vireoe QX", kVireoeQx},
    {"Vireoe Q", kVireo, kVireoGerman},
    // With several keys, the first family in the order wins.
    {"USB MADI OspreyNET", "Osprey Q1"},
    {"USB MADI", kMadi},
    {"Marlin USB", kUsb},
    {"Vireoe QX Marlin", kMarlin},
    {"Vireo and Vireoe QX", kVireoeQx},
    // Without a key.
    {"marlin usb %s%n", ""},
};

TEST(WriteDeviceList, WritesTheFamilyAndTheVersion) {
  constexpr char kVersion[] = "%s 02/13/2014,1.0.42.0 <\xC3\xA4\xE4>";
  const TemporaryFolder folder;
  for (const auto& expected : kCases) {
    for (const int german : {0, 1}) {
      std::FILE* const file = std::fopen((folder / "list").c_str(), "wb");
      kwa::WriteDeviceList(file, expected.displayName, kVersion, german);
      std::fclose(file);
      EXPECT_EQ(ReadWholeFile(folder / "list"),
                std::string(german != 0 ? expected.german : expected.english) + "\n\n" + kVersion + "\n")
          << expected.displayName;
    }
  }
}

TEST(WriteDpinstDocument, WritesVersionAndNameUnchanged) {
  constexpr char kOddVersion[] = "<%s%n&>";
  constexpr char kOddName[] = "100% Vireo %s & <b>\xC3\xA4\xE4";
  std::string expected = ExpectedDocument(true);
  ReplaceAll(expected, "\r\n", "\n");
  expected.replace(expected.find(kUsb, expected.find("Willkommen")), std::strlen(kUsb), kVireoGerman);
  ReplaceAll(expected, kUsb, kVireo);
  ReplaceAll(expected, "Marlin USB", kOddName);
  ReplaceAll(expected, "02/13/2014,1.0.42.0", kOddVersion);
  const TemporaryFolder folder;
  std::FILE* const file = std::fopen((folder / "document").c_str(), "wb");
  kwa::WriteDpinstDocument(file, kOddVersion, kOddName, true);
  std::fclose(file);
  EXPECT_EQ(ReadWholeFile(folder / "document"), expected);
}

TEST(WriteDpinstConfig, ReplacesAnOlderFileAndNeedsItsFolder) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "dpinst.xml", std::string(100000, 'x'));
  kwa::WriteDpinstConfig((folder / "").c_str(), "02/13/2014,1.0.42.0", "Marlin USB");
  EXPECT_EQ(ReadWholeFile(folder / "dpinst.xml"), ExpectedDocument());
  kwa::WriteDpinstConfig((folder / "missing\\").c_str(), "", "");
  EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"dpinst.xml"});
}

}  // namespace
