// What others can do to a run, and what becomes of it today. docs/security.md tells each of these hazards.

#include "expected_document.h"
#include "folder_link.h"
#include "held_dpinst.h"
#include "run_fixture.h"
#include "windows_facts.h"

namespace {

class Hazard : public InstallerRun {
 protected:
  // A run whose DPInst the test holds.
  RunSetup HeldSetup(const HeldDpinst& dpinst) const {
    if (!Exists(folder / "changed.exe")) {
      InstallerImage image;
      HeldDpinst::PutInto(image);
      image.WriteTo(folder / "changed.exe");
    }
    RunSetup setup = Setup();
    setup.program = folder / "changed.exe";
    dpinst.Hold(setup);
    return setup;
  }
};

// The command line has no quotes: Windows tries each part that ends at a blank first.
TEST_F(Hazard, UnquotedCommandLineStartsAPlantedProgram) {
  const std::string blanks = folder.MakeFolder("some folder\\temp");
  WriteWholeFile(folder / "some.exe", PayloadFile('b', "dpinst.exe"));
  RunSetup setup = Setup();
  setup.environment["TEMP"] = blanks;
  EXPECT_EQ(RunToEnd(setup).exitStatus, 0U);
  EXPECT_EQ(ReadReport(reports).program, folder / "some.exe");
  EXPECT_EQ(NamesIn(blanks), std::vector<std::string>());
}

// A file that cannot be deleted stays beside DPInst: a library that DPInst loads, say. The shell gives up at it, and
// leaves what it would have deleted after it.
TEST_F(Hazard, LockedForeignFileStaysBesideDpinst) {
  folder.MakeFolder("temp\\kwa");
  WriteWholeFile(work + "\\zz_planted.dll", "planted");
  const LockedFile lock(work + "\\zz_planted.dll");
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  const DpinstReport report = ReadReport(reports);
  EXPECT_EQ(report.files.size(), ExpectedNames().size() + 1);
  EXPECT_EQ(report.files.count("zz_planted.dll"), 1U);
  EXPECT_EQ(NamesIn(work), std::vector<std::string>{"zz_planted.dll"});
}

TEST_F(Hazard, LockedPayloadFileEndsTheRunSilently) {
  folder.MakeFolder("temp\\kwa");
  const LockedFile lock(work + "\\marlin_usb.sys");
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  EXPECT_FALSE(DpinstRan());
  EXPECT_EQ(NamesIn(work),
            (std::vector<std::string>{"marlin_usb.cat", "marlin_usb.inf", "marlin_usb.sys", "marlinusb.exe"}));
}

TEST_F(Hazard, DpinstKilled) {
  HeldDpinst dpinst(folder.Path());
  DebuggedRun run(HeldSetup(dpinst));
  ASSERT_TRUE(dpinst.AwaitStart(run));
  dpinst.Kill();
  EXPECT_EQ(run.Await().exitStatus, 0U);
  EXPECT_FALSE(Exists(work));
}

TEST_F(Hazard, InstallerKilledWhileDpinstRuns) {
  HeldDpinst dpinst(folder.Path());
  {
    DebuggedRun run(HeldSetup(dpinst));
    ASSERT_TRUE(dpinst.AwaitStart(run));
    run.Kill();
  }
  EXPECT_TRUE(dpinst.IsRunning());
  EXPECT_EQ(NamesIn(work), ExpectedNames());

  // Another try is in vain while that DPInst runs, and says nothing of it; later all is well.
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  EXPECT_FALSE(DpinstRan());
  dpinst.LetEnd();
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  EXPECT_TRUE(DpinstRan());
  EXPECT_FALSE(Exists(work));
}

TEST_F(Hazard, InstallerKilledWhileItUnpacks) {
  const std::string largest = work + "\\Panorama.exe";
  const std::size_t wholeSize = InstallerImage().Find("Panorama.exe").size;
  std::size_t size = wholeSize;
  // On a busy machine the installer may be faster than this.
  for (int attempt = 0; size >= wholeSize && attempt < 50; ++attempt) {
    DebuggedRun run(Setup());
    run.AwaitUntil([&] { return Exists(largest); });
    run.Kill();
    size = Exists(largest) ? ReadWholeFile(largest).size() : wholeSize;
  }
  ASSERT_LT(size, wholeSize);
  EXPECT_FALSE(Exists(work + "\\kwa.bmp"));
  DeleteFileA((reports + "\\report.json").c_str());

  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  EXPECT_EQ(ReadReport(reports).files, ExpectedFiles(ExpectedDocumentHere()));
  EXPECT_FALSE(Exists(work));
}

// The second one pulls the files from under the first one's DPInst, puts the like of them back up to the program that
// runs, and gives up there.
TEST_F(Hazard, TwoInstallersAtOnce) {
  HeldDpinst dpinst(folder.Path());
  DebuggedRun first(HeldSetup(dpinst));
  ASSERT_TRUE(dpinst.AwaitStart(first));
  WriteWholeFile(work + "\\AAA", "the first one's");
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  EXPECT_FALSE(DpinstRan());
  EXPECT_FALSE(Exists(work + "\\AAA"));
  EXPECT_TRUE(dpinst.IsRunning());
  dpinst.LetEnd();
  EXPECT_EQ(first.Await().exitStatus, 0U);
  EXPECT_FALSE(Exists(work));
}

// Somebody's folder under the work folder's name. The shell of Wine follows the link; others may not.
TEST_F(Hazard, LinkInTheFoldersPlaceLosesWhatItLeadsTo) {
  const std::string elsewhere = folder.MakeFolder("elsewhere");
  WriteWholeFile(elsewhere + "\\somebody's", "file");
  const FolderLink link(work, elsewhere);
  if (!IsWine() || !link.IsMade()) {
    GTEST_SKIP() << "known for Wine's shell and symbolic links only";
  }
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  EXPECT_FALSE(DpinstRan());
  EXPECT_FALSE(Exists(elsewhere));
}

// The same with a file that cannot be deleted, which keeps the link in its place.
TEST_F(Hazard, LinkInTheFoldersPlaceIsUnpackedThrough) {
  const std::string elsewhere = folder.MakeFolder("elsewhere");
  const LockedFile lock(elsewhere + "\\somebody's");
  const FolderLink link(work, elsewhere);
  if (!IsWine() || !link.IsMade()) {
    GTEST_SKIP() << "known for Wine's shell and symbolic links only";
  }
  HeldDpinst dpinst(folder.Path());
  DebuggedRun run(HeldSetup(dpinst));
  ASSERT_TRUE(dpinst.AwaitStart(run));
  EXPECT_EQ(NamesIn(elsewhere).size(), ExpectedNames().size() + 1);
  dpinst.LetEnd();
  EXPECT_EQ(run.Await().exitStatus, 0U);
  EXPECT_EQ(NamesIn(elsewhere), std::vector<std::string>{"somebody's"});
}

// A name with an "&" makes dpinst.xml no XML any more; nobody notices but DPInst.
TEST_F(Hazard, NamesAreNotEscapedInXml) {
  InstallerImage image;
  const EmbeddedFile& inf = image.Find("marlin_usb.inf");
  std::string text = image.Bytes().substr(inf.bodyPosition, inf.size);
  ReplaceAll(text, "Marlin USB", "USB <&>\"'%");
  image.SetBody(inf, text);
  EXPECT_EQ(RunToEnd(SetupOf(image)).exitStatus, 0U);
  std::string expected = ExpectedDocumentHere();
  ReplaceAll(expected, "Marlin USB", "USB <&>\"'%");
  EXPECT_EQ(ReadReport(reports).document, expected);
}

}  // namespace
