// The INF that gives the package's identity, and the values that are read from it. kwapayload's reader must read the
// same values as Windows, from many random files made of pieces that matter to one of the two readers.

#include <windows.h>

#include <gtest/gtest.h>

#include <random>
#include <string_view>

#include "dpinst/package_identity.h"
#include "inf/inf_cases.h"
#include "package/package_identity.h"
#include "temporary_folder.h"

namespace {

using namespace std::string_view_literals;

// Mostly the normal parts of an INF, so that the values are found often, and some faults.
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

using Identity = std::pair<std::string, std::string>;  // version, display name

// Fails the test unless both buffers are overwritten and the result is the length of the version.
Identity ReadIdentity(const std::string& workFolder) {
  kwa::DriverPackageIdentity identity = {"left over", "left over"};
  const std::uint32_t length = kwa::ReadPackageIdentity(workFolder.c_str(), identity.version, identity.displayName);
  EXPECT_EQ(length, std::string(identity.version).size());
  return {identity.version, identity.displayName};
}

// Each INF has a folder of its own, because Windows caches the contents of a file by its name.
void ExpectTheSame(const std::string& inf) {
  SCOPED_TRACE(testing::PrintToString(inf.substr(0, 300)));
  const TemporaryFolder folder;
  WriteWholeFile(folder / "random.inf", inf);
  const auto [version, displayName] = ReadIdentity(folder / "");
  const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(kwa::InfText(kwa::ByteSpan(inf)));
  EXPECT_EQ(identity.version.text, version);
  EXPECT_EQ(identity.displayName.text, displayName);
  EXPECT_TRUE(identity.certainty);
}

TEST(HostInfReader, ReadsWhatThePlatformReads) {
  if (GetACP() != 1252) {
    GTEST_SKIP() << "bytes beyond ASCII stay unchanged only in code page 1252; this Windows uses " << GetACP();
  }
  for (const InfCase& inf : InfCases()) {
    ExpectTheSame(inf.bytes);
  }
  std::mt19937 random(1);
  for (int i = 0; i < 200; ++i) {
    ExpectTheSame(RandomInf(&random));
  }
}

TEST(ReadPackageIdentity, ReadsTheFirstInfListed) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "no_inf.txt", "[Version]\r\nDriverVer = text\r\n");
  for (const std::string& workFolder : {folder / "", folder / "missing\\", std::string()}) {
    EXPECT_EQ(ReadIdentity(workFolder), Identity()) << workFolder;
  }
  for (const std::string name : {"b.inf", "a.inf", "c.INF"}) {
    WriteWholeFile(folder / name, "[Version]\r\nDriverVer = " + name + "\r\n");
  }
  WIN32_FIND_DATAA first = {};
  FindClose(FindFirstFileA((folder / "*.inf").c_str(), &first));
  EXPECT_EQ(ReadIdentity(folder / ""), Identity(first.cFileName, ""));
}

// With a buffer of 260 bytes: the whole path fits; only the path with "*.inf" fits; neither fits.
TEST(ReadPackageIdentity, IsEmptyWhenThePathDoesNotFit) {
  const struct {
    std::size_t folderLength;
    const char* name;
    const char* version;
  } cases[] = {{245, "marlin_usb.inf", "1"}, {246, "marlin_usb.inf", ""}, {255, "i.inf", ""}};
  for (const auto& expected : cases) {
    const TemporaryFolder folder;
    const std::string workFolder =
        folder.MakeFolder(std::string(expected.folderLength - (folder / "").size() - 1, 'n')) + "\\";
    // A path that is longer than the limit of Windows needs this prefix.
    WriteWholeFile("\\\\?\\" + workFolder + expected.name, "[Version]\r\nDriverVer = 1\r\n");
    EXPECT_EQ(ReadIdentity(workFolder).first, expected.version) << expected.folderLength;
  }
}

}  // namespace
