// Whole runs of the built installer, as a user starts it. A run for each kind of value of TEMP: where the files go,
// which command line starts DPInst, how often the runtime reports an invalid parameter, and which files stay.

#include <filesystem>

#include "run_fixture.h"
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
  EXPECT_EQ(result.document, ExpectedDocument());
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

using InstallerTemp = InstallerRun;

// The work folder is \kwa in the root of the current drive. If the path with "\kwa" does not fit, all files go to the
// root folder and stay there.
TEST_F(InstallerTemp, UnsetEmptyOrTooLongMeansTheRootOfTheDrive) {
  const struct {
    std::optional<std::string> temp;
    int lines;
    const char* workFolder;
  } cases[] = {
      {std::nullopt, 1, "\\kwa\\"},
      {"", 0, "\\kwa\\"},
      {"C:\\" + std::string(257, 't'), 1, "\\kwa\\"},
      {"C:\\" + std::string(256, 't'), 1, "\\"},
      {"C:\\" + std::string(253, 't'), 1, "\\"},
  };
  const std::map<std::string, std::string> files = ExpectedFiles(ExpectedDocument());
  // No other test writes there, but an earlier run of this test may have failed.
  std::filesystem::remove_all("C:\\kwa");
  for (const auto& [name, fingerprint] : files) {
    DeleteFileA(("C:\\" + name).c_str());
  }
  const std::vector<std::string> before = NamesIn("C:\\");
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.temp ? expected.temp->size() : 0);
    const RunResult result = RunIn("C:\\", expected.temp);
    EXPECT_EQ(result.exitStatus, 0U);
    EXPECT_EQ(result.invalidParameterLines, expected.lines);
    EXPECT_EQ(result.report["commandLine"], std::string(expected.workFolder) + DpinstName());
    EXPECT_EQ(result.report["program"], std::string("C:") + expected.workFolder + DpinstName());
    EXPECT_EQ(result.document, ExpectedDocument());
    if (std::string(expected.workFolder) == "\\") {
      for (const auto& [name, fingerprint] : files) {
        EXPECT_EQ(Fingerprint(ReadWholeFile("C:\\" + name)), fingerprint) << name;
        EXPECT_TRUE(DeleteFileA(("C:\\" + name).c_str())) << name;
      }
    } else {
      EXPECT_EQ(result.files, files);
    }
    EXPECT_EQ(NamesIn("C:\\"), before);
  }
}

// The separator after the work folder does not fit, so all files go to the current folder. The INF is not found:
// Windows looks for a bare file name in the Windows folder only.
TEST_F(InstallerTemp, Of255CharactersFillsTheCurrentFolder) {
  std::string document = ExpectedDocument();
  for (const char* text :
       {"Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4", "Marlin USB", "02/13/2014,1.0.42.0"}) {
    ReplaceAll(document, text, "");
  }
  const RunResult result = RunWith("C:\\" + std::string(252, 't'));
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_EQ(result.invalidParameterLines, 1);
  EXPECT_EQ(result.report["commandLine"], DpinstName());
  EXPECT_EQ(result.document, document);
  EXPECT_EQ(result.files, ExpectedFiles(document));
  EXPECT_EQ(NamesIn(current).size(), result.files.size()) << "no file is deleted";
}

TEST_F(InstallerTemp, IsUsedUnchanged) {
  const std::string blanks = folder.MakeFolder("a folder with blanks");
  folder.MakeFolder("current\\relative");
  const struct {
    std::string temp;
    std::string program;  // the folder in which DPInst ran; empty: it did not run
  } cases[] = {
      {blanks, blanks + "\\kwa\\"}, {temp + "\\", temp + "\\kwa\\"}, {"relative", current + "\\relative\\kwa\\"},
      {"\"" + temp + "\"", ""},     {temp + "\\missing", ""},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.temp);
    const RunResult result = RunWith(expected.temp);
    EXPECT_EQ(result.exitStatus, 0U);
    EXPECT_EQ(result.invalidParameterLines, 0);
    EXPECT_EQ(!result.report.is_null(), !expected.program.empty());
    if (!result.report.is_null()) {
      const std::string line = expected.temp + "\\kwa\\" + DpinstName();
      // Windows passes a quoted command line when the path contains a blank.
      EXPECT_EQ(result.report["commandLine"], line.find(' ') == std::string::npos ? line : "\"" + line + "\"");
      EXPECT_EQ(result.report["program"], expected.program + DpinstName());
      EXPECT_FALSE(std::filesystem::exists(expected.program));
    }
  }
  EXPECT_EQ(NamesIn(current), std::vector<std::string>{"relative"});
}

}  // namespace
