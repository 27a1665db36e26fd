// The host tool's reader of INFs must read what the platform's profile reader does of many files put together at random
// from all that means something to either, and its preview must be what the installer writes.

#include <windows.h>

#include <gtest/gtest.h>

#include <random>
#include <string_view>

#include "dpinst/dpinst_config.h"
#include "dpinst/package_identity.h"
#include "inf/package_identity.h"
#include "inf_cases.h"
#include "installer/preview.h"
#include "test_folder.h"

namespace {

using namespace std::string_view_literals;

// Mostly what makes up a profile, so that the values are found often; some of it wrong.
// clang-format off
constexpr std::string_view kPieces[] = {
    "[Version]\r\n"sv, "[Version]\r\n"sv, "DriverVer="sv, "DriverVer="sv, "DriverPackageDisplayName = "sv,
    "DriverPackageDisplayName = "sv, "[version] "sv, "DRIVERVER"sv, "[x]\n"sv, "\r\n"sv, "\r\n"sv, "\n"sv, "\r"sv,
    "["sv, "]"sv, "="sv, "\""sv, "\""sv, "'"sv, "'"sv, ";"sv, " "sv, "\t"sv, "\v"sv, "\x1A"sv, "\0"sv, "%"sv, "a"sv,
    "1.0"sv, "\xA0"sv, "\xE4"sv, "\x80"sv,
    "abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz"sv,
};
// clang-format on

std::string RandomInf(std::mt19937* random) {
  const auto below = [random](unsigned limit) { return static_cast<unsigned>((*random)() % limit); };
  const bool isUtf16 = below(3) == 0;
  std::string text = below(4) == 0 ? "" : "[Version]\r\n";
  for (unsigned i = below(30); i > 0; --i) {
    const std::string_view piece = kPieces[below(std::size(kPieces))];
    text += isUtf16 && (piece.front() & 0x80) != 0 ? "z"sv : piece;
  }
  return isUtf16 ? Utf16Inf(text) : text;
}

// Writes the INF into a folder of its own, since the platform keeps what it has read of a name.
void ExpectTheSame(const std::string& inf) {
  SCOPED_TRACE(testing::PrintToString(inf.substr(0, 300)));
  const TestFolder folder;
  WriteWholeFile(folder / "random.inf", inf);
  kwa::DriverPackageIdentity expected = {};
  kwa::ReadPackageIdentity(folder.Slashed().c_str(), expected.version, expected.displayName);
  const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(kwa::InfText(kwa::ByteSpan(inf)));
  EXPECT_EQ(identity.version, expected.version);
  EXPECT_EQ(identity.displayName, expected.displayName);
  EXPECT_EQ(identity.fault, "");
  kwa::WriteDpinstConfig(folder.Slashed().c_str(), expected.version, expected.displayName);
  EXPECT_EQ(kwa::PreviewDpinstConfig(identity, kwa::IsVistaOrLater() == 0), ReadWholeFile(folder / "dpinst.xml"));
}

TEST(HostInfReader, ReadsAndPreviewsWhatThePlatformReadsAndWrites) {
  if (GetACP() != 1252) {
    GTEST_SKIP() << "bytes beyond ASCII pass as they are in code page 1252; this Windows uses " << GetACP();
  }
  for (const InfCase& inf : InfCases()) {
    ExpectTheSame(inf.bytes);
  }
  std::mt19937 random(1);
  for (int i = 0; i < 200; ++i) {
    ExpectTheSame(RandomInf(&random));
  }
}

}  // namespace
