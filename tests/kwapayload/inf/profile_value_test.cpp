// The host's reader of profile values and the encodings of INFs. The Windows tests compare the reader with the platform
// for many more files.
#include <gtest/gtest.h>

#include "inf/profile_value.h"
#include "inf_cases.h"

namespace {

TEST(ReadProfileValue, ReadsWhatThePlatformReads) {
  for (const InfCase& expected : InfCases()) {
    SCOPED_TRACE(testing::PrintToString(expected.bytes.substr(0, 300)));
    // A copy on the heap, so that the sanitizer sees every access after the end of the file.
    const std::vector<char> bytes(expected.bytes.begin(), expected.bytes.end());
    const kwa::InfText inf(kwa::ByteSpan(std::string_view(bytes.data(), bytes.size())));
    EXPECT_EQ(kwa::ReadProfileValue(inf, "Version", "DriverVer"), expected.version);
    EXPECT_EQ(kwa::ReadProfileValue(inf, "Version", "DriverPackageDisplayName"), expected.displayName);
    EXPECT_TRUE(kwa::CheckEncoding(inf));
  }
}

TEST(InfText, KnowsTheEncoding) {
  const std::string text = "[Version]\r\nDriverVer=1@\r\n";
  std::string umlaut = Utf16Inf(text);
  umlaut[umlaut.find('@')] = '\xE4';
  std::string bigEndian = Utf16Inf(text);
  bigEndian.replace(0, 2, "\xFE\xFF");
  const struct {
    std::string bytes;
    kwa::InfEncoding encoding;
    std::string version;
    bool isKnown;
  } cases[] = {
      {text, kwa::InfEncoding::EightBit, "1@", true},
      {"\xEF\xBB\xBF" + text, kwa::InfEncoding::Utf8, "1@", false},
      {umlaut, kwa::InfEncoding::Utf16LittleEndian, "1\xFF", true},
      {bigEndian, kwa::InfEncoding::Utf16BigEndian, "", false},
  };
  for (const auto& test : cases) {
    const kwa::InfText inf{kwa::ByteSpan(test.bytes)};
    EXPECT_EQ(inf.Encoding(), test.encoding);
    EXPECT_EQ(kwa::ReadProfileValue(inf, "Version", "DriverVer"), test.version);
    EXPECT_EQ(kwa::CheckEncoding(inf).has_value(), test.isKnown);
  }
}

}  // namespace
