// Runs of damaged installers: copies of the built file with a few bytes changed.

#include "run_fixture.h"

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
    {"NothingInA", [](InstallerImage* image) { image->SetCount(image->A(), 0); }, true, kNothing},
    {"MagicOfB", [](InstallerImage* image) { image->SetText(image->B().position, "none"); }, true, kArchiveA},
    {"RefusedName", [](InstallerImage* image) { image->SetName(image->Find("marlin_usb.inf"), "a*b"); }, true,
     {"marlin_usb.cat", "marlinusb.exe"}},
    // The size of a table with this many entries does not fit in 32 bits.
    {"CountOfAPastTheLimit", [](InstallerImage* image) { image->SetCount(image->A(), 16268816); }, false, kNothing},
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

}  // namespace
