// Which names an archive may hold, and how Windows compares them.

#include "payload/entry_name.h"

#include <gtest/gtest.h>

namespace {

TEST(EntryName, GoodNames) {
  for (const std::string& name :
       {std::string("marlin_usb.inf"), std::string("Panorama.exe"), std::string("a b"), std::string(".x"),
        std::string("com"), std::string("COM10"), std::string("console"), std::string("nul_.txt"), std::string("xNUL"),
        std::string("~!@#$%^&()[]{}'`;,=+-"), std::string(259, 'n')}) {
    EXPECT_EQ("", kwa::EntryNameFault(name)) << name;
  }
}

TEST(EntryName, BadNames) {
  const char kRefused[] = "which Windows refuses in a bare file name";
  const char kDevice[] = "the name is a device's on Windows";
  const char kCharacters[] = "the name is not plain printable ASCII";
  const char kEnd[] = "the name ends in a dot or blank, which Windows drops";
  const std::pair<std::string, std::string> kCases[] = {
      {"", "the name is empty"},
      {std::string(260, 'n'), "the name has 260 bytes; an archive holds at most 259"},
      {"a/b", std::string("the name holds a '/', ") + kRefused},
      {"a\\b", std::string("the name holds a '\\', ") + kRefused},
      {"C:x", std::string("the name holds a ':', ") + kRefused},
      {"what?", std::string("the name holds a '?', ") + kRefused},
      {"..", kEnd},
      {"a.", kEnd},
      {"a ", kEnd},
      {"NUL", kDevice},
      {"nul.txt", kDevice},
      {"Con .log", kDevice},
      {"com1", kDevice},
      {"LPT9.x.y", kDevice},
      {"CONIN$", kDevice},
      {"gr\xC3\xBC\xC3\x9F", kCharacters},
      {"a\nb", kCharacters},
      {"a\x7F", kCharacters},
      {std::string("a\0b", 3), kCharacters},
  };
  for (const auto& [name, fault] : kCases) {
    EXPECT_EQ(fault, kwa::EntryNameFault(name)) << name;
  }
}

// The underscore lies between the upper-case and the lower-case letters.
TEST(EntryName, UnderscoreSortsBehindLetters) {
  EXPECT_LT(kwa::UpperCaseName("marlinusb.exe"), kwa::UpperCaseName("marlin_usb.cat"));
  EXPECT_LT(kwa::UpperCaseName("dpinst.exe"), kwa::UpperCaseName("dpinst64.exe"));
  EXPECT_EQ("[\\]{|}AZ", kwa::UpperCaseName("[\\]{|}az"));
}

}  // namespace
