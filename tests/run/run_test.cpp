// Whole runs of the built installer, as its user would start it.

#include "run_fixture.h"
#include "windows_facts.h"

namespace {

// The other tests ask Windows what it is; this one asks whether it is what the test's name says.
TEST(WindowsUnderTest, IsTheOneThatThePrefixNames) {
  char prefix[MAX_PATH] = {};
  GetEnvironmentVariableA("WINEPREFIX", prefix, MAX_PATH);
  const std::string path = prefix;
  const std::string name = path.substr(path.rfind('/') + 1);
  if (name.empty()) {
    GTEST_SKIP() << "this is not Wine";
  }
  EXPECT_EQ(Is64Bit(), name == "win64") << name;
  EXPECT_EQ(WindowsMajorVersion() <= 5, name == "winxp") << name;
}

TEST_F(InstallerRun, GivesDpinstEveryByteAndLeavesNothing) {
  const RunResult result = RunToEnd(Setup());
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_EQ(result.invalidParameterLines, 0);
  EXPECT_EQ(result.messageBoxes, 0);

  const DpinstReport report = ReadReport(reports);
  EXPECT_EQ(report.commandLine, work + "\\" + DpinstName());
  EXPECT_EQ(report.program, work + "\\" + DpinstName());
  EXPECT_EQ(report.bitness, Is64Bit() ? 64 : 32);
  EXPECT_EQ(report.currentFolder, current);
  EXPECT_EQ(report.document, ExpectedDocumentHere());
  EXPECT_EQ(report.files, ExpectedFiles(ExpectedDocumentHere()));

  EXPECT_EQ(NamesIn(temp), std::vector<std::string>());
  EXPECT_EQ(NamesIn(current), std::vector<std::string>());
}

TEST_F(InstallerRun, EndsWithZeroWhateverDpinstSays) {
  for (const char* code : {"0", "2", "0x80010000", "0xC0010203", "0x40000001", "259", "0xFFFFFFFF", "0xC0000005"}) {
    SCOPED_TRACE(code);
    RunSetup setup = Setup();
    setup.environment["KWA_STANDIN_EXIT"] = code;
    EXPECT_EQ(RunToEnd(setup).exitStatus, 0U);
    EXPECT_TRUE(DpinstRan());
    EXPECT_FALSE(Exists(work));
    DeleteFileA((reports + "\\report.json").c_str());
  }
}

TEST_F(InstallerRun, RemovesWhatAnEarlierRunLeft) {
  folder.MakeFolder("temp\\kwa\\sub\\subsub");
  WriteWholeFile(work + "\\aaa.inf", "[Version]\r\nDriverVer = old\r\nDriverPackageDisplayName = MADI\r\n");
  WriteWholeFile(work + "\\dpinst.xml", std::string(100000, 'x'));
  WriteWholeFile(work + "\\Panorama.exe", "old");
  WriteWholeFile(work + "\\sub\\subsub\\file", "old");
  SetFileAttributesA((work + "\\Panorama.exe").c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  const DpinstReport report = ReadReport(reports);
  EXPECT_EQ(report.files, ExpectedFiles(ExpectedDocumentHere()));
  EXPECT_EQ(NamesIn(temp), std::vector<std::string>());
}

TEST_F(InstallerRun, ReplacesAFileInTheFoldersPlace) {
  WriteWholeFile(work, "a file of this name");
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  EXPECT_EQ(ReadReport(reports).program, work + "\\" + DpinstName());
  EXPECT_FALSE(Exists(work));
}

}  // namespace
