// The host's reader of INFs against what the platform's reads; the table's other half is in the Windows tests.

#include <gtest/gtest.h>

#include "inf/package_identity.h"
#include "inf_cases.h"

namespace {

TEST(ReadHostPackageIdentity, ReadsWhatThePlatformReads) {
  for (const InfCase& expected : InfCases()) {
    SCOPED_TRACE(expected.name);
    // A copy on the heap, so that the sanitizer sees every step beyond the file.
    const std::vector<char> bytes(expected.bytes.begin(), expected.bytes.end());
    const kwa::PackageIdentity identity =
        kwa::ReadHostPackageIdentity(kwa::ByteSpan(std::string_view(bytes.data(), bytes.size())));
    EXPECT_EQ(identity.version, expected.version);
    EXPECT_EQ(identity.displayName, expected.displayName);
  }
}

// As Windows documents it: the quotes are discarded, and what is left fits the installer's buffer.
TEST(ReadHostPackageIdentity, ReadsTheLongestValueInQuotes) {
  const std::string value(259, 'v');
  const std::string inf = "[Version]\r\nDriverVer=\"" + value + "\"\r\n";
  EXPECT_EQ(kwa::ReadHostPackageIdentity(kwa::ByteSpan(inf)).version, value);
}

}  // namespace
