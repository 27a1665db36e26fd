// Runs of damaged installers, which are copies of the built file with a few bytes changed. What other programs or a
// full disk can do to a run, and how it ends today: docs/security.md describes each hazard.

#include <filesystem>

#include "run_fixture.h"
#include "windows_facts.h"

namespace {

struct Damage {
  const char* what;
  void (*change)(InstallerImage*);
  bool returns;                   // if false, the run ends through terminate
  std::vector<std::string> left;  // the files in the work folder after the run; empty: the folder is deleted
};

const std::vector<std::string> kNothing = {"."};  // an empty folder
const std::vector<std::string> kArchiveA = {"Panorama.chm",        "Panorama.exe",           "marlin_usb.cat",
                                            "marlin_usb.inf",      "marlin_usb.sys",         "marlin_usb_64.sys",
                                            "marlin_usb_asio.dll", "marlin_usb_asio_64.dll", "marlinusb.exe"};

// clang-format off
const Damage kDamages[] = {
    {"NothingInA", [](InstallerImage* image) { image->SetWord(image->A() + 4, 0); }, true, kNothing},
    {"MagicOfB", [](InstallerImage* image) { image->SetText(image->B(), "none"); }, true, kArchiveA},
    {"RefusedName", [](InstallerImage* image) { image->SetName(image->Find("marlin_usb.inf"), "a*b"); }, true,
     {"marlin_usb.cat", "marlinusb.exe"}},
    // The size of a table with this many entries does not fit in 32 bits.
    {"CountOfAPastTheLimit", [](InstallerImage* image) { image->SetWord(image->A() + 4, 16268816); }, false, kNothing},
    // DPInst cannot be started: it is missing, or it is not a program.
    {"NoDpinst", [](InstallerImage* image) {
       image->SetName(image->Find("dpinst64.exe"), "dpinst65.exe");
       image->SetName(image->Find("dpinst.exe"), "dpinst33.exe");
     }, true, {}},
    {"DpinstIsNoProgram", [](InstallerImage* image) {
       image->SetBody(image->Find("dpinst64.exe"), "");
       image->SetBody(image->Find("dpinst.exe"), "");
     }, true, {}},
};
// clang-format on

using DamagedInstaller = InstallerRun;

TEST_F(DamagedInstaller, StartsNothing) {
  for (const Damage& damage : kDamages) {
    SCOPED_TRACE(damage.what);
    InstallerImage image;
    damage.change(&image);
    const RunResult result = RunChanged(image);
    EXPECT_EQ(result.exitStatus == 0, damage.returns) << result.exitStatus;
    EXPECT_EQ(result.invalidParameterLines, 0);
    EXPECT_TRUE(result.report.is_null());
    EXPECT_EQ(std::filesystem::exists(work), !damage.left.empty());
    if (std::filesystem::exists(work)) {
      EXPECT_EQ(NamesIn(work), damage.left == kNothing ? std::vector<std::string>() : damage.left);
    }
  }
}

using Hazard = InstallerRun;

// The command line has no quotes, so Windows first tries each part that ends before a blank.
TEST_F(Hazard, UnquotedCommandLineStartsAPlantedProgram) {
  const std::string blanks = folder.MakeFolder("some folder\\temp");
  WriteWholeFile(folder / "some.exe", ReadWholeFile(KWA_PAYLOAD_DIR "/b/dpinst.exe"));
  EXPECT_EQ(RunWith(blanks).report["program"], folder / "some.exe");
  EXPECT_EQ(NamesIn(blanks), std::vector<std::string>());
}

// A file that cannot be deleted stays in the folder of DPInst. It can be a library that DPInst loads. The shell stops
// at this file, and does not delete the files after it.
TEST_F(Hazard, LockedForeignFileStaysBesideDpinst) {
  folder.MakeFolder("temp\\kwa");
  const auto lock = Lock(work + "\\zz_planted.dll");
  const RunResult result = Run();
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_EQ(result.files.size(), ExpectedFiles("").size() + 1);
  EXPECT_EQ(NamesIn(work), std::vector<std::string>{"zz_planted.dll"});
}

TEST_F(Hazard, LockedPayloadFileEndsTheRunSilently) {
  folder.MakeFolder("temp\\kwa");
  const auto lock = Lock(work + "\\marlin_usb.sys");
  const RunResult result = Run();
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_TRUE(result.report.is_null());
  EXPECT_EQ(NamesIn(work),
            (std::vector<std::string>{"marlin_usb.cat", "marlin_usb.inf", "marlin_usb.sys", "marlinusb.exe"}));
}

// With these characters in a name, dpinst.xml is not well-formed. Only DPInst notices it.
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

// The installer does not notice that the disk is full, and files are truncated. KWA_SMALL_DISK is the root folder of a
// small disk, with a separator at the end.
TEST_F(Hazard, FullDiskCutsFilesShort) {
  char disk[MAX_PATH] = {};
  if (GetEnvironmentVariableA("KWA_SMALL_DISK", disk, MAX_PATH) == 0) {
    GTEST_SKIP() << "KWA_SMALL_DISK names no small disk";
  }
  const std::string there = std::string(disk) + "temp";
  const std::string filler = std::string(disk) + "filler";
  std::filesystem::remove_all(there);  // an earlier run of this test may have left files
  CreateDirectoryA(there.c_str(), nullptr);
  ULARGE_INTEGER available = {};
  ASSERT_TRUE(GetDiskFreeSpaceExA(disk, &available, nullptr, nullptr));
  WriteWholeFile(filler, std::string(static_cast<std::size_t>(available.QuadPart - (8U << 20U)), 'x'));
  const RunResult result = RunWith(there);
  EXPECT_EQ(result.exitStatus, 0U);
  EXPECT_TRUE(result.report.is_null()) << "DPInst is one of the truncated files";
  EXPECT_EQ(NamesIn(there), std::vector<std::string>());
  DeleteFileA(filler.c_str());
  RemoveDirectoryA(there.c_str());
}

}  // namespace
