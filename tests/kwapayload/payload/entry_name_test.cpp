// Names that an archive may hold.

#include "payload/entry_name.h"

#include <gtest/gtest.h>

#include "base/ascii_text.h"

namespace {

TEST(EntryName, GoodAndBadNames) {
  for (const std::string& name :
       {std::string("marlin_usb.inf"), std::string(".x"), std::string("COM10"), std::string("nul_.txt"),
        std::string("xNUL"), std::string("~!@#$%^&()[]{}'`,=+-"), std::string(259, 'n')}) {
    EXPECT_TRUE(kwa::CheckEntryName(name)) << name;
  }
  // Each with a word of the reason.
  const std::pair<std::string, std::string> kBadNames[] = {
      {std::string(260, 'n'), "260"},
      {"", "empty"},
      {"..", "dot"},
      {"a ", "blank"},
      {"nul.txt", "device"},
      {"Con .log", "device"},
      {"com0", "device"},
      {"LPT9.x.y", "device"},
      {"CONIN$", "device"},
      {"\xC3\xBC", "ASCII"},
      {"a\x1F", "ASCII"},
      {"a\x7F", "ASCII"},
      {"C:x", "':'"},
      {"a\\b", "'\\'"},
      {"a/b", "'/'"},
      {"a;b", "';'"},
  };
  for (const auto& [name, reason] : kBadNames) {
    const kwa::Check check = kwa::CheckEntryName(name);
    ASSERT_FALSE(check) << name;
    EXPECT_NE(std::string::npos, check.error().what.find(reason)) << check.error().what;
  }
  EXPECT_EQ("[\\]{|}AZ", kwa::UpperCase("[\\]{|}az"));
}

}  // namespace
