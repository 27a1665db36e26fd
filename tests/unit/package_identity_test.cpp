// Which INF gives the identity. What is read of it, host_inf_reader_test.cpp holds to the host tool's reader.

#include "dpinst/package_identity.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "test_folder.h"

namespace {

using Identity = std::pair<std::string, std::string>;  // version, display name

// Fails the test unless what the buffers held is gone and the result is the length of the version.
Identity ReadIdentity(const std::string& workFolder) {
  kwa::DriverPackageIdentity identity = {"left over", "left over"};
  const std::uint32_t length = kwa::ReadPackageIdentity(workFolder.c_str(), identity.version, identity.displayName);
  EXPECT_EQ(length, std::string(identity.version).size());
  return {identity.version, identity.displayName};
}

TEST(ReadPackageIdentity, ReadsTheFirstInfListed) {
  const TestFolder folder;
  WriteWholeFile(folder / "no_inf.txt", "[Version]\r\nDriverVer = text\r\n");
  for (const std::string& workFolder : {folder.Slashed(), folder / "missing\\", std::string()}) {
    EXPECT_EQ(ReadIdentity(workFolder), Identity()) << workFolder;
  }
  for (const std::string name : {"b.inf", "a.inf", "c.INF"}) {
    WriteWholeFile(folder / name, "[Version]\r\nDriverVer = " + name + "\r\n");
  }
  WIN32_FIND_DATAA first = {};
  FindClose(FindFirstFileA((folder / "*.inf").c_str(), &first));
  EXPECT_EQ(ReadIdentity(folder.Slashed()), Identity(first.cFileName, ""));
}

// 260 bytes hold the folder with "*.inf", but not with the INF's own name; or not even the former.
TEST(ReadPackageIdentity, IsEmptyWhenThePathDoesNotFit) {
  const struct {
    std::size_t folderLength;
    const char* name;
    const char* version;
  } cases[] = {{245, "marlin_usb.inf", "1"}, {246, "marlin_usb.inf", ""}, {255, "i.inf", ""}};
  for (const auto& expected : cases) {
    const TestFolder folder;
    const std::string workFolder = folder.MakeFolderOfLength(expected.folderLength);
    // Past the platform's own limit a path needs this mark to be taken.
    WriteWholeFile("\\\\?\\" + workFolder + expected.name, "[Version]\r\nDriverVer = 1\r\n");
    EXPECT_EQ(ReadIdentity(workFolder).first, expected.version) << expected.folderLength;
  }
}

}  // namespace
