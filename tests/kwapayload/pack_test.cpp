// The pack command: archives byte for byte, and that a failure says what is wrong and leaves nothing behind.

#include "payload/pack_archive.h"

#include <gtest/gtest.h>

#include "base/tool_failure.h"
#include "built_archive.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

// A folder `in` to be packed and a folder `out` for the archive, in a folder of the test's own.
class Pack : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(folder / "in");
    std::filesystem::create_directory(folder / "out");
  }

  void AddFile(const std::string& name, const std::string& bytes) { WriteWholeFile(folder / ("in/" + name), bytes); }

  // Expects exit status 1, one line for each fault, each naming its file in the test's folder, and an untouched `out`.
  void ExpectFailure(const std::vector<std::string>& more, const std::vector<std::string>& faults,
                     const std::string& before = "") {
    const auto namesBefore = NamesIn(folder / "out");
    std::vector<std::string> arguments = {"pack", folder / "in", folder / "out/archive"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ToolRun run = RunTool(arguments, before);
    std::string expected;
    for (const std::string& fault : faults) {
      expected += "kwapayload: " + (folder / fault) + "\n";
    }
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(expected, run.errors);
    EXPECT_EQ("", run.output);
    EXPECT_EQ(namesBefore, NamesIn(folder / "out"));
  }

  const TemporaryFolder folder;
};

TEST_F(Pack, OrderNamesBodiesAndPadding) {
  const std::vector<ArchiveBody> bodies = {
      {"Beta.txt", "12345"},
      {"dpinst.exe", ""},
      {"dpinst64.exe", std::string(131072, 'x')},
      {"marlinusb.exe", "1234"},
      {"marlin_usb.cat", std::string(4097, '\xFF')},
      {"_", "1"},
      {std::string(251, 'n') + ".txt", "123"},
  };
  // The order of the table is that of the upper-case names.
  std::vector<ArchiveBody> sorted = bodies;
  std::rotate(sorted.end() - 2, sorted.end() - 1, sorted.end());
  for (const ArchiveBody& body : bodies) {
    AddFile(body.name, body.bytes);
  }
  const ToolRun run = RunTool({"pack", folder / "in", folder / "out/archive"});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("", run.errors + run.output);
  EXPECT_TRUE(BuildArchive(sorted) == ReadWholeFile(folder / "out/archive"));
  EXPECT_EQ(std::vector<std::string>{"archive"}, NamesIn(folder / "out"));
}

TEST_F(Pack, ReplacesAnOlderArchive) {
  AddFile("a", "new");
  WriteWholeFile(folder / "out/archive", "old");
  EXPECT_EQ(0, RunTool({"pack", folder / "in", folder / "out/archive"}).status);
  EXPECT_EQ(BuildArchive({{"a", "new"}}), ReadWholeFile(folder / "out/archive"));
}

TEST_F(Pack, DepfileEscapesWhatMakeReads) {
  AddFile("a b#c$d", "1");
  AddFile("e", "2");
  WriteWholeFile(folder / "contents.json",
                 R"({"files": [{"archive": "B", "order": 1, "name": "a b#c$d", "size": 1, "kind": "k"},
                               {"archive": "B", "order": 2, "name": "e", "size": 1, "kind": "k"}]})");
  EXPECT_EQ(0, RunTool({"pack", folder / "in", folder / "out/archive", "--contents", folder / "contents.json",
                        "--archive", "B", "--depfile", folder / "out/d"})
                   .status);
  const std::string root = std::filesystem::path(folder.Path()).generic_string();
  EXPECT_EQ(root + "/out/archive: \\\n  " + root + "/in/a\\ b\\#c$$d \\\n  " + root + "/in/e \\\n  " + root +
                "/contents.json\n",
            ReadWholeFile(folder / "out/d"));
}

TEST_F(Pack, NoFiles) {
  ExpectFailure({}, {"in: holds no files"});
}

TEST_F(Pack, NoFolder) {
  std::filesystem::remove(folder / "in");
  ExpectFailure({}, {"in: cannot be read: No such file or directory"});
}

TEST_F(Pack, NoFolderForTheArchive) {
  AddFile("a", "1");
  const ToolRun run = RunTool({"pack", folder / "in", folder / "none/archive"});
  EXPECT_EQ(1, run.status);
  EXPECT_EQ("kwapayload: " + (folder / "none/archive") + ": cannot be created: No such file or directory\n",
            run.errors);
}

TEST_F(Pack, ArchiveInItsOwnFolder) {
  AddFile("a", "1");
  const ToolRun run = RunTool({"pack", folder / "in", folder / "in/archive"});
  EXPECT_EQ(1, run.status);
  EXPECT_EQ("kwapayload: " + (folder / "in/archive") + ": lies in the folder that is to be packed\n", run.errors);
}

TEST_F(Pack, ArchiveIsAFolder) {
  AddFile("a", "1");
  std::filesystem::create_directory(folder / "out/archive");
  ExpectFailure({}, {"out/archive: exists and is not a file"});
}

TEST_F(Pack, EveryFaultOfAFolderIsNamed) {
  AddFile("good", "1");
  AddFile("sub/a", "1");
  AddFile("nul.x", "1");
  AddFile("Readme", "1");
#ifdef _WIN32
  ExpectFailure({},
                {"in\\nul.x: the name is a device's on Windows", "in\\sub: is a folder; an archive holds only files"});
#else
  AddFile("README", "1");
  AddFile("l\nf", "1");
  AddFile("gr\xC3\xBC\xC3\x9F", "1");
  ExpectFailure({}, {"in/Readme: is to Windows the same name as README",
                     "in/gr\xC3\xBC\xC3\x9F: the name is not plain printable ASCII",
                     "in/l\\x0Af: the name is not plain printable ASCII", "in/nul.x: the name is a device's on Windows",
                     "in/sub: is a folder; an archive holds only files"});
#endif
}

TEST_F(Pack, BodyTooLarge) {
  AddFile("a", "1");
  std::filesystem::resize_file(folder / "in/a", 0x80000000U);
  ExpectFailure({}, {"in/a: has 2147483648 bytes; the installer reads bodies below 2147483648"});
}

TEST_F(Pack, ArchiveTooLarge) {
  AddFile("a", "1");
  AddFile("b", "1");
  std::filesystem::resize_file(folder / "in/a", 0x40000000U);
  std::filesystem::resize_file(folder / "in/b", 0x3FFFFDE4U);
  ExpectFailure({}, {"out/archive: would have 2147483648 bytes; a 32-bit program holds less than 2147483648"});
}

TEST_F(Pack, UnreadableFile) {
  AddFile("a", "1");
  AddFile("b", "1");
  std::filesystem::permissions(folder / "in/b", std::filesystem::perms::none);
  if (std::FILE* const file = std::fopen((folder / "in/b").c_str(), "rb")) {
    std::fclose(file);
    GTEST_SKIP() << "this user reads every file";
  }
  ExpectFailure({}, {"in/b: cannot be opened: Permission denied"});
}

TEST_F(Pack, FullDiskLeavesTheOlderArchive) {
#ifdef _WIN32
  GTEST_SKIP() << "needs a limit for the size of files";
#else
  AddFile("a", std::string(300000, 'x'));
  WriteWholeFile(folder / "out/archive", "old");
  ExpectFailure({}, {"out/archive: cannot be written: File too large"}, "ulimit -f 64; ");
  EXPECT_EQ("old", ReadWholeFile(folder / "out/archive"));
#endif
}

// A file that another program writes to meanwhile.
TEST_F(Pack, SizeChangesWhilePacking) {
  AddFile("a", std::string(200000, 'x'));
  const std::pair<std::uint64_t, std::string> kCases[] = {{199999, "longer"}, {200001, "shorter"}};
  for (const auto& [size, change] : kCases) {
    try {
      kwa::OutputFile output(folder / "out/archive");
      kwa::PackArchive({{"a", folder / "in/a", size}}, folder / "out/archive", output);
      FAIL() << "packed a file that became " << change;
    } catch (const kwa::ToolFailure& failure) {
      EXPECT_EQ((folder / "in/a") + ": became " + change + " while it was packed", failure.what());
    }
  }
  EXPECT_EQ(std::vector<std::string>{}, NamesIn(folder / "out"));
}

TEST(PackMisuse, EndsWithStatus2) {
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {},
           {"pack"},
           {"pack", "in"},
           {"pack", "in", "out", "more"},
           {"pack", "in", "out", "--contents", "c"},
           {"pack", "in", "out", "--archive", "A"},
           {"pack", "in", "out", "--contents", "c", "--archive", "C"},
           {"unpack", "in"},
           {"list"},
           {"extract", "a"},
       }) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(2, run.status) << testing::PrintToString(arguments);
    EXPECT_EQ(0U, run.errors.find("kwapayload: ")) << run.errors;
    EXPECT_EQ("", run.output);
  }
}

}  // namespace
