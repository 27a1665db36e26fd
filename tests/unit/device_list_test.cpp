// The welcome page's device list for every family, and which family a name with several keys belongs to.

#include "dpinst/device_families.h"

#include <gtest/gtest.h>

#include "test_folder.h"

namespace {

constexpr char kOspreyNet[] = "Osprey Q1\n\n";
constexpr char kMadi[] = "Osprey Q2, Osprey Q3, Tern K4 (Update Mode)\n\n";
constexpr char kUsb[] = "Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4\n\n";
constexpr char kMarlin[] = "Marlin T1, Marlin T2, Marlin R2, Marlin R3, Marlin R4\n\n";
constexpr char kVireoeQx[] = "Vireoe Z9, Osprey Q2\n\n";
constexpr char kVireo[] =
    "Vireo Series (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), \n"
    "Vireoe Series (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)\n\n";
constexpr char kVireoGerman[] =
    "Vireo Serie (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), \n"
    "Vireoe Serie (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)\n\n";
constexpr char kNone[] = "\n\n";

const struct {
  const char* displayName;
  const char* english;
  const char* german;
} kCases[] = {
    {"OspreyNET", kOspreyNet, kOspreyNet},
    {"MADI", kMadi, kMadi},
    {"USB", kUsb, kUsb},
    {"Marlin", kMarlin, kMarlin},
    {"Vireoe QX", kVireoeQx, kVireoeQx},
    {"Vireo", kVireo, kVireoGerman},
    // Anywhere in the name.
    {"The Marlin T drivers", kMarlin, kMarlin},
    {"xUSBx", kUsb, kUsb},
    {"Vireoe", kVireo, kVireoGerman},
    {"Vireoe Q", kVireo, kVireoGerman},
    // Several keys: the first in the order of the families.
    {"USB OspreyNET", kOspreyNet, kOspreyNet},
    {"Vireo Marlin USB MADI OspreyNET", kOspreyNet, kOspreyNet},
    {"USB MADI", kMadi, kMadi},
    {"Vireoe QX MADI", kMadi, kMadi},
    {"Marlin USB", kUsb, kUsb},
    {"Vireo Marlin", kMarlin, kMarlin},
    {"Vireo and Vireoe QX", kVireoeQx, kVireoeQx},
    // No key.
    {"", kNone, kNone},
    {"marlin usb", kNone, kNone},
    {"OspreyNet", kNone, kNone},
    {"US B", kNone, kNone},
    {"%s%n", kNone, kNone},
};

std::string DeviceList(const char* displayName, const char* version, int german) {
  const TestFolder folder;
  std::FILE* const file = std::fopen((folder / "list").c_str(), "wb");
  kwa::WriteDeviceList(file, displayName, version, german);
  std::fclose(file);
  return ReadWholeFile(folder / "list");
}

TEST(WriteDeviceList, WritesTheFamilyAndTheVersion) {
  constexpr char kVersion[] = "02/13/2014,1.0.42.0";
  for (const auto& expected : kCases) {
    SCOPED_TRACE(expected.displayName);
    const std::string end = std::string(kVersion) + "\n";
    EXPECT_EQ(DeviceList(expected.displayName, kVersion, 0), expected.english + end);
    EXPECT_EQ(DeviceList(expected.displayName, kVersion, 1), expected.german + end);
  }
  EXPECT_EQ(DeviceList("Vireo", "", -1), std::string(kVireoGerman) + "\n") << "any nonzero flag means German";
}

TEST(WriteDeviceList, WritesTheVersionAsItStands) {
  for (const std::string version : {"", "%s%d%n 100%", "<&\">", "\xC3\xA4\xE4"}) {
    EXPECT_EQ(DeviceList("MADI", version.c_str(), 0), kMadi + version + "\n");
  }
}

}  // namespace
