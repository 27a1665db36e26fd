// DriverVer values that Setup ranks packages by, and those that it does not.
#include <gtest/gtest.h>

#include "inf/driver_version.h"

namespace {

std::string VersionText(const std::string& driverVer) {
  const std::optional<kwa::DriverVersion> version = kwa::ReadDriverVersion(driverVer);
  return version ? version->VersionText() : "";
}

TEST(DriverVersion, IsOfADateThatExistsAndOneToFourNumbers) {
  // clang-format off
  const std::pair<const char*, const char*> cases[] = {
      {"02/13/2014,1.0.42.0", "1.0.42.0"}, {"02/29/2012,1", "1.0.0.0"}, {"12-31-1999 , 65535.007 ; built", "65535.7.0.0"},
      {"02/29/2014,1", ""}, {"02/29/1900,1", ""}, {"02/29/2000,1", "1.0.0.0"}, {"13/01/2014,1", ""},
      {"00/01/2014,1", ""}, {"04/00/2014,1", ""}, {"01/01/0000,1", ""}, {"2/13/2014,1", ""}, {"02/13/14,1", ""},
      {"02/13/2014", ""}, {"02/13/2014,1.", ""}, {"02/13/2014,65536", ""}, {"02/13/2014,1.2.3.4.5", ""},
      {"02/13/2014,1.0.42.0 beta", ""}, {"2014/02/13,1", ""},
  };
  // clang-format on
  for (const auto& [driverVer, version] : cases) {
    EXPECT_EQ(VersionText(driverVer), version) << driverVer;
  }
  for (const std::string last :
       {"01/31", "02/28", "03/31", "04/30", "05/31", "06/30", "07/31", "08/31", "09/30", "10/31", "11/30", "12/31"}) {
    std::string dayAfter = last;
    ++dayAfter.back();
    EXPECT_EQ(VersionText(last + "/2014,1"), "1.0.0.0") << last;
    EXPECT_EQ(VersionText(dayAfter + "/2014,1"), "") << dayAfter;
  }
}

}  // namespace
