// Which names an archive may hold, and how Windows compares them.

#include "payload/entry_name.h"

#include <gtest/gtest.h>

#include "base/ascii_text.h"

namespace {

TEST(EntryName, GoodAndBadNames) {
  const std::string kRefused = "which Windows refuses in a bare file name";
  const std::string kDevice = "the name is a device's on Windows";
  const std::string kCharacters = "the name is not plain printable ASCII";
  const std::string kEnd = "the name ends in a dot or blank, which Windows drops";
  // clang-format off
  const std::pair<std::string, std::string> kCases[] = {
      {"marlin_usb.inf", ""}, {".x", ""}, {"COM10", ""}, {"nul_.txt", ""}, {"xNUL", ""}, {"~!@#$%^&()[]{}'`,=+-", ""},
      {std::string(259, 'n'), ""}, {std::string(260, 'n'), "the name has 260 bytes; an archive holds at most 259"},
      {"", "the name is empty"}, {"..", kEnd}, {"a ", kEnd}, {"nul.txt", kDevice}, {"Con .log", kDevice},
      {"com0", kDevice}, {"LPT9.x.y", kDevice}, {"CONIN$", kDevice}, {"\xC3\xBC", kCharacters}, {"a\x1F", kCharacters},
      {"a\x7F", kCharacters}, {"C:x", "the name holds a ':', " + kRefused}, {"a\\b", "the name holds a '\\', " + kRefused},
      {"a;b", "the name holds a ';', at which the build's lists of files are split"},
  };
  // clang-format on
  for (const auto& [name, fault] : kCases) {
    EXPECT_EQ(fault, kwa::EntryNameFault(name)) << name;
  }
}

// The underscore lies between the upper-case and the lower-case letters.
TEST(EntryName, UnderscoreSortsBehindLetters) {
  EXPECT_LT(kwa::UpperCase("marlinusb.exe"), kwa::UpperCase("marlin_usb.cat"));
  EXPECT_EQ("[\\]{|}AZ", kwa::UpperCase("[\\]{|}az"));
}

}  // namespace
