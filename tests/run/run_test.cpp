// Whole runs of the built installer, as a user starts it.

#include "run_fixture.h"
#include "same_text.h"
#include "windows_facts.h"

namespace {

// The other tests ask Windows for its version. This test checks that it is the version in the name of the prefix.
TEST(WindowsUnderTest, IsTheOneThatThePrefixNames) {
  char prefix[MAX_PATH] = {};
  GetEnvironmentVariableA("WINEPREFIX", prefix, MAX_PATH);
  const std::string path = prefix;
  const std::string name = path.substr(path.rfind('/') + 1);
  EXPECT_EQ(Is64Bit(), name == "win64") << name;
  EXPECT_EQ(WindowsMajorVersion() <= 5, name == "winxp") << name;
}

TEST_F(InstallerRun, GivesDpinstEveryByteAndLeavesNothing) {
  const RunResult result = Run();
  EXPECT_EQ(result.exitStatus, 0U) << "whatever DPInst returns";
  EXPECT_EQ(result.invalidParameterLines, 0);
  EXPECT_EQ(result.messageBoxes, 0);
  EXPECT_EQ(result.report["commandLine"], work + "\\" + DpinstName());
  EXPECT_EQ(result.report["program"], work + "\\" + DpinstName());
  EXPECT_EQ(result.report["bitness"], Is64Bit() ? 64 : 32);
  EXPECT_EQ(result.report["currentFolder"], current);
  EXPECT_TRUE(SameText(result.document, ExpectedDocument()));
  EXPECT_EQ(result.files, ExpectedFiles(ExpectedDocument()));
  EXPECT_EQ(result.report["languages"]["0x0809"]["eulaNoButton"], "I do not accept this EULA ");
  EXPECT_EQ(NamesIn(temp), std::vector<std::string>());
  EXPECT_EQ(NamesIn(current), std::vector<std::string>());
}

TEST_F(InstallerRun, RemovesWhatAnEarlierRunLeft) {
  folder.MakeFolder("temp\\kwa\\sub\\subsub");
  WriteWholeFile(work + "\\aaa.inf", "[Version]\r\nDriverVer = old\r\nDriverPackageDisplayName = MADI\r\n");
  WriteWholeFile(work + "\\Panorama.exe", "old");
  WriteWholeFile(work + "\\sub\\subsub\\file", "old");
  SetFileAttributesA((work + "\\Panorama.exe").c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(Run().files, ExpectedFiles(ExpectedDocument()));
  EXPECT_EQ(NamesIn(temp), std::vector<std::string>());
}

}  // namespace
