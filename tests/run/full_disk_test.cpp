// Runs on a disk that is too small, which KWA_SMALL_DISK names: its root folder, with a separator at its end. A test
// fills all of it.

#include "expected_document.h"
#include "named_lock.h"
#include "run_fixture.h"

namespace {

// Nothing tells the installer that the disk is full: files are cut short or empty, and the run goes on with them.
class FullDisk : public InstallerRun {
 protected:
  void SetUp() override {
    if (!GetEnvironmentVariableA("KWA_SMALL_DISK", disk, MAX_PATH)) {
      GTEST_SKIP() << "KWA_SMALL_DISK names no small disk";
    }
    CreateDirectoryA(TempFolder().c_str(), nullptr);
  }
  void TearDown() override {
    DeleteFileA(Filler().c_str());
    RemoveDirectoryA(TempFolder().c_str());
  }

  std::string TempFolder() const { return std::string(disk) + "temp"; }
  std::string Filler() const { return std::string(disk) + "filler"; }

  // Leaves so much room on the disk.
  void LeaveFree(std::uint64_t bytes) const {
    ULARGE_INTEGER available = {};
    ASSERT_TRUE(GetDiskFreeSpaceExA(disk, &available, nullptr, nullptr));
    ASSERT_GT(available.QuadPart, bytes);
    WriteWholeFile(Filler(), std::string(static_cast<std::size_t>(available.QuadPart - bytes), 'x'));
  }

  RunSetup SetupThere() const {
    RunSetup setup = Setup();
    setup.environment["TEMP"] = TempFolder();
    return setup;
  }

  const NamedLock onlyOne{"kwa_test_small_disk"};
  char disk[MAX_PATH] = {};
};

TEST_F(FullDisk, BeforeDpinstIsWritten) {
  LeaveFree(8U << 20U);
  EXPECT_EQ(RunToEnd(SetupThere()).exitStatus, 0U);
  EXPECT_FALSE(DpinstRan());
  EXPECT_EQ(NamesIn(TempFolder()), std::vector<std::string>());
}

TEST_F(FullDisk, BeforeTheConfigurationIsWritten) {
  // What the 14 files take in whole clusters of this disk.
  constexpr std::uint64_t kCluster = 4096;
  const InstallerImage image;
  std::uint64_t room = kCluster;
  for (const EmbeddedArchive* archive : {&image.A(), &image.B()}) {
    for (const EmbeddedFile& file : archive->files) {
      room += (file.size + kCluster - 1) / kCluster * kCluster;
    }
  }
  LeaveFree(room);
  EXPECT_EQ(RunToEnd(SetupThere()).exitStatus, 0U);
  const DpinstReport report = ReadReport(reports);
  EXPECT_EQ(report.files.size(), ExpectedNames().size());
  EXPECT_EQ(report.document, ExpectedDocumentHere().substr(0, report.document.size()));
  EXPECT_LT(report.document.size(), ExpectedDocumentHere().size());
  EXPECT_EQ(NamesIn(TempFolder()), std::vector<std::string>());
}

}  // namespace
