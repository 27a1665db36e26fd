// What the host reads of an INF in place of the installer. The Windows tests compare this with the platform for many
// more files.
#include <gtest/gtest.h>

#include "inf_cases.h"
#include "package/package_identity.h"

namespace {

TEST(ReadHostPackageIdentity, ReadsWhatThePlatformReads) {
  for (const InfCase& expected : InfCases()) {
    SCOPED_TRACE(testing::PrintToString(expected.bytes.substr(0, 300)));
    // A copy on the heap, so that the sanitizer sees every access after the end of the file.
    const std::vector<char> bytes(expected.bytes.begin(), expected.bytes.end());
    const kwa::InfText inf(kwa::ByteSpan(std::string_view(bytes.data(), bytes.size())));
    const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(inf);
    EXPECT_EQ(identity.version.text, expected.version);
    EXPECT_TRUE(identity.certainty);
  }
}

TEST(ReadHostPackageIdentity, KnowsWhatEachWindowsReadsInItsOwnWay) {
  const std::string text = "[Version]\r\nDriverVer=1@\r\n";
  std::string umlaut = Utf16Inf(text);
  umlaut[umlaut.find('@')] = '\xE4';
  const std::pair<std::string, std::string> cases[] = {
      {"\xEF\xBB\xBF" + text, "1@"}, {umlaut, "1?"}, {"\xFE\xFF" + Utf16Inf(text).substr(2), ""}};
  for (const auto& [bytes, version] : cases) {
    const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(kwa::InfText(kwa::ByteSpan(bytes)));
    EXPECT_EQ(identity.version.text, version);
    EXPECT_FALSE(identity.certainty);
  }
}

std::string VersionText(const std::string& driverVer) {
  const std::optional<kwa::DriverVersion> version = kwa::ReadDriverVersion(driverVer);
  return version ? kwa::VersionText(*version) : "";
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
