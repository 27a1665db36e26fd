// The host tool's reader of INFs must read what the platform's profile reader does: the code page unit by unit, and
// many files put together at random from all that means something to either.

#include <windows.h>

#include <gtest/gtest.h>

#include <random>
#include <string_view>

#include "dpinst/dpinst_config.h"
#include "dpinst/package_identity.h"
#include "inf/ansi_code_page.h"
#include "inf/package_identity.h"
#include "inf_cases.h"
#include "installer/preview.h"
#include "test_folder.h"

namespace {

using namespace std::string_view_literals;

constexpr UINT kCodePage = 1252;

TEST(ToCodePage1252, GivesWhatThePlatformGives) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const wchar_t text = static_cast<wchar_t>(unit);
    char expected = 0;
    ASSERT_EQ(WideCharToMultiByte(kCodePage, 0, &text, 1, &expected, 1, nullptr, nullptr), 1);
    EXPECT_EQ(kwa::ToCodePage1252(static_cast<char16_t>(unit)), expected) << std::hex << unit;
  }
}

// Mostly what makes up a profile, so that the values are found often; some of it wrong.
constexpr std::string_view kPieces[] = {
    "[Version]\r\n"sv,
    "[Version]\r\n"sv,
    "DriverVer="sv,
    "DriverVer="sv,
    "DriverPackageDisplayName = "sv,
    "DriverPackageDisplayName = "sv,
    "[version] "sv,
    "DRIVERVER"sv,
    "[x]\n"sv,
    "\r\n"sv,
    "\r\n"sv,
    "\n"sv,
    "\r"sv,
    "["sv,
    "]"sv,
    "="sv,
    "\""sv,
    "\""sv,
    "'"sv,
    "'"sv,
    ";"sv,
    " "sv,
    "\t"sv,
    "\v"sv,
    "\x1A"sv,
    "\0"sv,
    "%"sv,
    "a"sv,
    "1.0"sv,
    "\xA0"sv,
    "\xC3\xA4"sv,
    "\xE2\x82\xAC"sv,
    "\xF0\x9F\x98\x80"sv,
    "\xE4"sv,
    "\xED"sv,
    "\xF0"sv,
    "\xF4"sv,
    "\x80"sv,
    "\x90"sv,
    "abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz"sv,
};

std::string RandomInf(std::mt19937& random) {
  const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
  std::string text = below(4) == 0 ? "" : "[Version]\r\n";
  for (unsigned i = below(30); i > 0; --i) {
    text += kPieces[below(std::size(kPieces))];
  }
  const unsigned encoding = below(4);
  if (encoding < 2) {
    return (encoding == 0 ? "" : "\xEF\xBB\xBF") + text;
  }
  std::string wide = encoding == 2 ? "\xFF\xFE" : "\xFE\xFF";
  for (const char character : text) {
    // Now and then another unit than a letter of Latin 1.
    const char high = below(40) == 0 ? static_cast<char>(random()) : '\0';
    wide += encoding == 2 ? character : high;
    wide += encoding == 2 ? high : character;
  }
  return wide;
}

TEST(ReadHostPackageIdentity, ReadsWhatThePlatformReadsOfRandomFiles) {
  if (GetACP() != kCodePage) {
    GTEST_SKIP() << "the host tool knows code page 1252; this Windows uses " << GetACP();
  }
  const TestFolder folder;
  std::mt19937 random(1);
  for (int i = 0; i < 500; ++i) {
    const std::string inf = RandomInf(random);
    // A new name each time: the platform keeps what it has read.
    const std::string subfolder = folder / std::to_string(i);
    CreateDirectoryA(subfolder.c_str(), nullptr);
    WriteWholeFile(subfolder + "\\random.inf", inf);
    kwa::DriverPackageIdentity expected = {};
    kwa::ReadPackageIdentity((subfolder + "\\").c_str(), expected.version, expected.displayName);
    const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(kwa::ByteSpan(inf));
    EXPECT_EQ(identity.version, expected.version) << i << ": " << testing::PrintToString(inf);
    EXPECT_EQ(identity.displayName, expected.displayName) << i << ": " << testing::PrintToString(inf);
  }
}

// From the INF to the file: what the host previews is what the installer writes on this Windows.
TEST(PreviewDpinstConfig, IsWhatTheInstallerWrites) {
  if (GetACP() != kCodePage) {
    GTEST_SKIP() << "the host tool knows code page 1252; this Windows uses " << GetACP();
  }
  for (const InfCase& inf : InfCases()) {
    SCOPED_TRACE(inf.name);
    const TestFolder folder;
    WriteWholeFile(folder / "marlin_usb.inf", inf.bytes);
    kwa::DriverPackageIdentity identity = {};
    kwa::ReadPackageIdentity(folder.Slashed().c_str(), identity.version, identity.displayName);
    kwa::WriteDpinstConfig(folder.Slashed().c_str(), identity.version, identity.displayName);
    EXPECT_EQ(
        kwa::PreviewDpinstConfig(kwa::ReadHostPackageIdentity(kwa::ByteSpan(inf.bytes)), kwa::IsVistaOrLater() == 0),
        ReadWholeFile(folder / "dpinst.xml"));
  }
}

}  // namespace
