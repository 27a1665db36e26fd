// The identity from INF files of all kinds, through the platform's own reader of such files.

#include "dpinst/package_identity.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "debugger_lines.h"
#include "test_folder.h"

namespace {

struct Identity {
  std::string version;
  std::string displayName;
};

constexpr char kLeftOver[] = "left over";

// Fails the test unless the result is the length of the version.
Identity ReadIdentity(const std::string& workFolder) {
  kwa::DriverPackageIdentity identity;
  std::fill_n(identity.version, kwa::kTextCapacity, '!');
  std::fill_n(identity.displayName, kwa::kTextCapacity, '!');
  kwa::strcpy_s(identity.version, kwa::kTextCapacity, kLeftOver);
  kwa::strcpy_s(identity.displayName, kwa::kTextCapacity, kLeftOver);
  const std::uint32_t length = kwa::ReadPackageIdentity(workFolder.c_str(), identity.version, identity.displayName);
  EXPECT_EQ(length, std::string(identity.version).size());
  return {identity.version, identity.displayName};
}

constexpr char kVersion[] = "02/13/2014,1.0.42.0";

// clang-format off
const struct {
  const char* what;
  std::string inf;
  std::string version;
  std::string displayName;
} kCases[] = {
    {"the package's own layout",
     "; KWA Marlin USB\r\n\r\n[Version]\r\nSignature = \"$Windows NT$\"\r\nClass = MEDIA\r\nProvider = \"KWA\"\r\n"
     "DriverVer = 02/13/2014,1.0.42.0\r\nDriverPackageDisplayName = \"Marlin USB\"\r\nCatalogFile = marlin_usb.cat\r\n"
     "[Strings]\r\nDriverVer = other\r\n", kVersion, "Marlin USB"},
    {"no display name", "[Version]\r\nDriverVer = 02/13/2014,1.0.42.0\r\n", kVersion, ""},
    {"no version", "[Version]\r\nDriverPackageDisplayName = \"Marlin USB\"\r\n", "", "Marlin USB"},
    {"values without text", "[Version]\r\nDriverVer =\r\nDriverPackageDisplayName = \"\"\r\n", "", ""},
    {"no such section", "[Other]\r\nDriverVer = 1\r\nDriverPackageDisplayName = n\r\n", "", ""},
    {"empty file", "", "", ""},
    {"case and blanks do not matter",
     "[vErSiOn]\r\n  DRIVERVER=02/13/2014,1.0.42.0\r\n\tdriverpackagedisplayname  =   Marlin USB   \r\n",
     kVersion, "Marlin USB"},
    {"line ends of other systems", "[Version]\nDriverVer = 1\nDriverPackageDisplayName = n\n", "1", "n"},
    {"no line end at the end", "[Version]\r\nDriverPackageDisplayName = n\r\nDriverVer = 1", "1", "n"},
    {"one pair of quotes", "[Version]\r\nDriverVer = \"\"1\"\"\r\nDriverPackageDisplayName = 'n'\r\n", "\"1\"", "n"},
    {"quoted blanks", "[Version]\r\nDriverPackageDisplayName = \" n \"\r\n", "", " n "},
    {"no substitution", "[Version]\r\nDriverVer = %ver%\r\nDriverPackageDisplayName = %name% & %s <b>\r\n",
     "%ver%", "%name% & %s <b>"},
    {"other equals signs", "[Version]\r\nDriverVer = a=b\r\n", "a=b", ""},
    {"the first of two", "[Version]\r\nDriverVer = 1\r\nDriverVer = 2\r\n", "1", ""},
    {"259 characters", "[Version]\r\nDriverVer = " + std::string(259, 'v') + "\r\n", std::string(259, 'v'), ""},
    {"260 characters",
     "[Version]\r\nDriverVer = " + std::string(260, 'v') + "\r\nDriverPackageDisplayName = " + std::string(260, 'd') +
     "\r\n", std::string(259, 'v'), std::string(259, 'd')},
};
// clang-format on

TEST(ReadPackageIdentity, TakesBothValuesWhole) {
  for (const auto& expected : kCases) {
    SCOPED_TRACE(expected.what);
    const TestFolder folder;
    WriteWholeFile(folder / "marlin_usb.inf", expected.inf);
    const Identity identity = ReadIdentity(folder.Slashed());
    EXPECT_EQ(identity.version, expected.version);
    EXPECT_EQ(identity.displayName, expected.displayName);
  }
}

TEST(ReadPackageIdentity, ReadsTheFirstInfListed) {
  const TestFolder folder;
  WriteWholeFile(folder / "no_inf.txt", "[Version]\r\nDriverVer = text\r\n");
  for (const std::string name : {"b.inf", "a.inf", "c.INF"}) {
    WriteWholeFile(folder / name, "[Version]\r\nDriverVer = " + name + "\r\n");
  }
  WIN32_FIND_DATAA first = {};
  FindClose(FindFirstFileA((folder / "*.inf").c_str(), &first));
  EXPECT_EQ(ReadIdentity(folder.Slashed()).version, first.cFileName);
}

TEST(ReadPackageIdentity, IsEmptyWithoutAnInf) {
  const TestFolder folder;
  WriteWholeFile(folder / "marlin_usb.txt", "[Version]\r\nDriverVer = 1\r\n");
  for (const std::string& workFolder : {folder.Slashed(), folder / "missing\\", std::string()}) {
    SCOPED_TRACE(workFolder);
    const Identity identity = ReadIdentity(workFolder);
    EXPECT_EQ(identity.version, "");
    EXPECT_EQ(identity.displayName, "");
  }
}

// 260 bytes hold the folder with "*.inf", but not with the INF's own name; or not even the former.
TEST(ReadPackageIdentity, IsEmptyWhenThePathDoesNotFit) {
  const struct {
    std::size_t folderLength;
    const char* name;
    std::string version;
    std::size_t debuggerLines;
  } cases[] = {{245, "marlin_usb.inf", "1", 0}, {246, "marlin_usb.inf", "", 1}, {255, "i.inf", "", 1}};
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.folderLength);
    const TestFolder folder;
    const std::string workFolder = folder.MakeFolderOfLength(expected.folderLength);
    // Past the platform's own limit a path needs this mark to be taken.
    WriteWholeFile("\\\\?\\" + workFolder + expected.name, "[Version]\r\nDriverVer = 1\r\n");
    const DebuggerLines collector;
    EXPECT_EQ(ReadIdentity(workFolder).version, expected.version);
    EXPECT_EQ(DebuggerLines::Lines().size(), expected.debuggerLines);
  }
}

}  // namespace
