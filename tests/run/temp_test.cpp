// What becomes of a run for each kind of value of TEMP: where the files go, which command line starts DPInst, how often
// the runtime complains, and what stays behind.

#include "expected_document.h"
#include "run_fixture.h"
#include "scratch_drive.h"
#include "windows_facts.h"

namespace {

// dpinst.xml of a package that says nothing of itself.
std::string DocumentWithoutIdentity() {
  std::string document = ExpectedDocumentHere();
  ReplaceAll(document, "Marlin R1, Marlin R2, Kestrel, Marlin R3, Marlin R4", "");
  ReplaceAll(document, "Marlin USB", "");
  ReplaceAll(document, "02/13/2014,1.0.42.0", "");
  return document;
}

class InstallerTemp : public InstallerRun {
 protected:
  RunSetup SetupWith(const std::optional<std::string>& value, const std::string& startFolder) const {
    RunSetup setup = Setup();
    setup.environment["TEMP"] = value;
    setup.currentFolder = startFolder;
    return setup;
  }
};

// The work folder is \kwa in the root of the current drive, whatever folder of it is the current one.
TEST_F(InstallerTemp, UnsetEmptyOrTooLongMeansTheRootOfTheDrive) {
  const struct {
    const char* what;
    std::optional<std::string> temp;
    int lines;
  } cases[] = {
      {"not set", std::nullopt, 1},
      {"empty", "", 0},
      {"260 characters", "C:\\" + std::string(257, 't'), 1},
      {"5000 characters", std::string(5000, 't'), 1},
  };
  const ScratchDrive drive(folder.MakeFolder("drive"));
  const std::map<std::string, std::string> files = ExpectedFiles(ExpectedDocumentHere());
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.what);
    const RunResult result = RunToEnd(SetupWith(expected.temp, drive.Root()));
    EXPECT_EQ(result.exitStatus, 0U);
    EXPECT_EQ(result.invalidParameterLines, expected.lines);
    const DpinstReport report = ReadReport(reports);
    EXPECT_EQ(report.commandLine, std::string("\\kwa\\") + DpinstName());
    EXPECT_EQ(report.program, drive.Root() + "kwa\\" + DpinstName());
    EXPECT_EQ(report.files, files);
    EXPECT_EQ(drive.NewNames(), std::vector<std::string>());
    EXPECT_EQ(drive.LostNames(), std::vector<std::string>());
    DeleteFileA((reports + "\\report.json").c_str());
  }
}

// The work folder's own name does not fit: everything lands in the root of the drive and stays there.
TEST_F(InstallerTemp, Of256To259CharactersFillsTheRootOfTheDrive) {
  const ScratchDrive drive(folder.MakeFolder("drive"));
  const std::map<std::string, std::string> files = ExpectedFiles(ExpectedDocumentHere());
  for (const std::size_t length : {256U, 259U}) {
    SCOPED_TRACE(length);
    const RunResult result = RunToEnd(SetupWith("C:\\" + std::string(length - 3, 't'), drive.Root()));
    EXPECT_EQ(result.exitStatus, 0U);
    EXPECT_EQ(result.invalidParameterLines, 1);
    const DpinstReport report = ReadReport(reports);
    EXPECT_EQ(report.commandLine, std::string("\\") + DpinstName());
    EXPECT_EQ(report.program, drive.Root() + DpinstName());
    EXPECT_EQ(report.document, ExpectedDocumentHere());
    EXPECT_EQ(drive.NewNames(), ExpectedNames());
    EXPECT_EQ(drive.LostNames(), std::vector<std::string>());
    for (const std::string& name : drive.NewNames()) {
      EXPECT_EQ(Fingerprint(ReadWholeFile(drive.Root() + name)), files.at(name)) << name;
      DeleteFileA((drive.Root() + name).c_str());
    }
    DeleteFileA((reports + "\\report.json").c_str());
  }
}

// The separator behind the work folder does not fit: everything lands in the current folder, and the INF, looked for
// under its bare name, is not found there.
TEST_F(InstallerTemp, Of255CharactersFillsTheCurrentFolder) {
  const RunResult result = RunToEnd(SetupWith("C:\\" + std::string(252, 't'), current));
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_EQ(result.invalidParameterLines, 1);
  const DpinstReport report = ReadReport(reports);
  EXPECT_EQ(report.commandLine, DpinstName());
  EXPECT_EQ(report.program, current + "\\" + DpinstName());
  EXPECT_EQ(report.document, DocumentWithoutIdentity());
  EXPECT_EQ(report.files, ExpectedFiles(DocumentWithoutIdentity()));
  EXPECT_EQ(NamesIn(current), ExpectedNames()) << "nobody cleans up";
}

TEST_F(InstallerTemp, IsTakenAsItStands) {
  const std::string blanks = folder.MakeFolder("a folder with blanks");
  folder.MakeFolder("current\\relative");
  const struct {
    const char* what;
    std::string temp;
    std::string program;  // where DPInst ran; empty: nowhere
  } cases[] = {
      {"with blanks", blanks, blanks + "\\kwa\\"},
      {"with a separator at its end", temp + "\\", temp + "\\kwa\\"},
      {"with slashes", folder.Path() + "/temp", temp + "\\kwa\\"},
      {"relative", "relative", current + "\\relative\\kwa\\"},
      {"dot", ".", current + "\\kwa\\"},
      {"in quotes", "\"" + temp + "\"", ""},
      {"a missing folder", temp + "\\missing", ""},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.what);
    const RunResult result = RunToEnd(SetupWith(expected.temp, current));
    EXPECT_EQ(result.exitStatus, 0U);
    EXPECT_EQ(result.invalidParameterLines, 0);
    EXPECT_EQ(DpinstRan(), !expected.program.empty());
    if (DpinstRan()) {
      const DpinstReport report = ReadReport(reports);
      const std::string line = expected.temp + "\\kwa\\" + DpinstName();
      // The platform quotes a line for the program when it found that behind a blank.
      EXPECT_EQ(report.commandLine, line.find(' ') == std::string::npos ? line : "\"" + line + "\"");
      EXPECT_EQ(report.program, expected.program + DpinstName());
      EXPECT_EQ(report.currentFolder, current);
      EXPECT_EQ(report.document, ExpectedDocumentHere());
      EXPECT_FALSE(Exists(expected.program));
    }
    DeleteFileA((reports + "\\report.json").c_str());
  }
  EXPECT_EQ(NamesIn(folder.Path()), (std::vector<std::string>{"a folder with blanks", "current", "reports", "temp"}));
  EXPECT_EQ(NamesIn(current), std::vector<std::string>{"relative"});
}

// The longest path that DPInst's name still fits behind, and the next one. The payload's long names would not fit
// sooner, so these copies carry short ones.
TEST_F(InstallerTemp, DpinstIsNotStartedWhenItsNameDoesNotFit) {
  if (!Is64Bit()) {
    GTEST_SKIP() << "the shorter name of the 32-bit edition fits wherever a folder can be made";
  }
  InstallerImage image;
  char letter = 'a';
  for (const EmbeddedFile& file : image.A().files) {
    image.SetName(file, std::string(1, letter++) + (file.name == "marlin_usb.inf" ? ".inf" : ""));
  }
  const std::string longTemp = folder.MakeFolderOfLength(242);
  const struct {
    std::string temp;
    bool isStarted;
    int lines;
  } cases[] = {{longTemp, true, 0}, {longTemp + "\\", false, 1}};
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.temp.size());
    if (!expected.isStarted) {
      image.SetName(image.B().files[0], "p");
      image.SetName(image.B().files[1], "q");
    }
    RunSetup setup = SetupOf(image);
    setup.environment["TEMP"] = expected.temp;
    const RunResult result = RunToEnd(setup);
    EXPECT_EQ(result.exitStatus, 0U);
    EXPECT_EQ(result.invalidParameterLines, expected.lines);
    EXPECT_EQ(DpinstRan(), expected.isStarted);
    EXPECT_EQ(NamesIn(longTemp), std::vector<std::string>());
    DeleteFileA((reports + "\\report.json").c_str());
  }
}

}  // namespace
