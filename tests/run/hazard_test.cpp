// What others, or a full disk, can do to a run, and what becomes of it today. docs/security.md tells each of these
// hazards.

#include <filesystem>

#include "run_fixture.h"
#include "windows_facts.h"

namespace {

using Hazard = InstallerRun;

// The command line has no quotes: Windows tries each part that ends at a blank first.
TEST_F(Hazard, UnquotedCommandLineStartsAPlantedProgram) {
  const std::string blanks = folder.MakeFolder("some folder\\temp");
  WriteWholeFile(folder / "some.exe", ReadWholeFile(KWA_PAYLOAD_DIR "/b/dpinst.exe"));
  EXPECT_EQ(RunWith(blanks).report["program"], folder / "some.exe");
  EXPECT_EQ(NamesIn(blanks), std::vector<std::string>());
}

// A file that cannot be deleted stays beside DPInst: a library that DPInst loads, say. The shell gives up at it, and
// leaves what it would have deleted after it.
TEST_F(Hazard, LockedForeignFileStaysBesideDpinst) {
  folder.MakeFolder("temp\\kwa");
  const LockedFile lock = Lock(work + "\\zz_planted.dll");
  const RunResult result = Run();
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_EQ(result.files.size(), ExpectedFiles("").size() + 1);
  EXPECT_EQ(NamesIn(work), std::vector<std::string>{"zz_planted.dll"});
}

TEST_F(Hazard, LockedPayloadFileEndsTheRunSilently) {
  folder.MakeFolder("temp\\kwa");
  const LockedFile lock = Lock(work + "\\marlin_usb.sys");
  const RunResult result = Run();
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_TRUE(result.report.is_null());
  EXPECT_EQ(NamesIn(work),
            (std::vector<std::string>{"marlin_usb.cat", "marlin_usb.inf", "marlin_usb.sys", "marlinusb.exe"}));
}

// Names with these make dpinst.xml no XML any more; nobody notices but DPInst.
TEST_F(Hazard, NamesAreNotEscapedInXml) {
  InstallerImage image;
  const EmbeddedFile& inf = image.Find("marlin_usb.inf");
  std::string text = image.Bytes().substr(inf.bodyPosition, inf.size);
  ReplaceAll(text, "Marlin USB", "USB <&>\"'%");
  image.SetBody(inf, text);
  const RunResult result = RunChanged(image);
  std::string expected = ExpectedDocument();
  ReplaceAll(expected, "Marlin USB", "USB <&>\"'%");
  EXPECT_EQ(result.document, expected);
  EXPECT_EQ(result.report["error"].get<std::string>().rfind("dpinst.xml, line ", 0), 0U) << result.report["error"];
  EXPECT_EQ(result.exitStatus, 0U);
}

// On the small disk whose root folder KWA_SMALL_DISK names, with a separator at its end: nothing tells the installer
// that the disk is full, and files are cut short.
TEST_F(Hazard, FullDiskCutsFilesShort) {
  char disk[MAX_PATH] = {};
  if (GetEnvironmentVariableA("KWA_SMALL_DISK", disk, MAX_PATH) == 0) {
    GTEST_SKIP() << "KWA_SMALL_DISK names no small disk";
  }
  const std::string there = std::string(disk) + "temp";
  const std::string filler = std::string(disk) + "filler";
  std::filesystem::remove_all(there);  // what an earlier one of this may have left
  CreateDirectoryA(there.c_str(), nullptr);
  ULARGE_INTEGER available = {};
  ASSERT_TRUE(GetDiskFreeSpaceExA(disk, &available, nullptr, nullptr));
  WriteWholeFile(filler, std::string(static_cast<std::size_t>(available.QuadPart - (8U << 20U)), 'x'));
  const RunResult result = RunWith(there);
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_TRUE(result.report.is_null()) << "it is one of those files";
  EXPECT_EQ(NamesIn(there), std::vector<std::string>());
  DeleteFileA(filler.c_str());
  RemoveDirectoryA(there.c_str());
}

}  // namespace
