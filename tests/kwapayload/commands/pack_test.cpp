// The pack command: archives byte for byte, and that a failure says what is wrong and leaves no file.

#include <gtest/gtest.h>

#include <algorithm>

#include "built_archive.h"
#include "files/output_file.h"
#include "files/tool_failure.h"
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

  void AddFile(const std::string& name, const std::string& bytes = "1") {
    WriteWholeFile(folder / ("in/" + name), bytes);
  }

  // Packs, and expects these faults and an untouched `out`.
  void ExpectFaults(const std::vector<std::string>& faults, const std::string& archive = "out/archive") {
    const auto namesBefore = NamesIn(folder / "out");
    ExpectFailure(RunTool({"pack", folder / "in", folder / archive}), folder.Path(), faults);
    EXPECT_EQ(namesBefore, NamesIn(folder / "out"));
  }

  const TemporaryFolder folder;
};

TEST_F(Pack, OrderNamesBodiesAndPadding) {
  // The order of the table is that of the upper-case names.
  const std::vector<ArchiveBody> bodies = {{"Beta.txt", "12345"},
                                           {"dpinst.exe", ""},
                                           {"dpinst64.exe", std::string(131072, 'x')},
                                           {"marlinusb.exe", "1234"},
                                           {"marlin_usb.cat", std::string(4097, '\xFF')},
                                           {std::string(251, 'n') + ".txt", "123"},
                                           {"_", "1"}};
  for (const ArchiveBody& body : bodies) {
    AddFile(body.name, body.bytes);
  }
  WriteWholeFile(folder / "out/archive", "old");
  const ToolRun run = RunTool({"pack", folder / "in", folder / "out/archive"});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("", run.errors + run.output);
  EXPECT_TRUE(BuildArchive(bodies) == ReadWholeFile(folder / "out/archive"));
  EXPECT_EQ(std::vector<std::string>{"archive"}, NamesIn(folder / "out"));
}

TEST_F(Pack, EveryDifferenceFromTheListIsNamed) {
  WriteWholeFile(folder / "contents.json",
                 R"({"files": [{"archive": "B", "name": "other", "size": 1, "kind": "k"},
                               {"archive": "A", "name": "same", "size": 3, "kind": "7-bit ASCII text, no line ends"},
                               {"archive": "A", "name": "short", "size": 2147483647, "kind": "k"},
                               {"archive": "A", "name": "gone", "size": 1, "kind": "k"}]})");
  AddFile("same", "123");
  AddFile("short", "12");
  AddFile("other", "1");
  const auto run = [this] {
    return RunTool(
        {"pack", folder / "in", folder / "out/archive", "--contents", folder / "contents.json", "--archive", "A"});
  };
  ExpectFailure(
      run(), folder.Path(),
      {"in: archive A, other: is in the place of gone", "in: archive A, short: has 2 bytes instead of 2147483647",
       "contents.json: does not fit; if the files are right, 'kwapayload contents " + folder.Path() + "/ --output " +
           (folder / "contents.json") + "' makes a new list"});
  EXPECT_EQ(std::vector<std::string>{}, NamesIn(folder / "out"));
  WriteWholeFile(folder / "contents.json", R"({"files": [{"archive": "A"}]})");
  const ToolRun bad = run();
  EXPECT_EQ(3, std::count(bad.errors.begin(), bad.errors.end(), '\n')) << bad.errors;
  EXPECT_EQ(2, bad.status);
}

// A new list would hide what is missing.
TEST_F(Pack, MissingFilesNeedNoNewList) {
  std::string list = ReadWholeFile(KWA_CONTENTS);
  list.insert(list.find('[') + 1, R"({"archive": "A", "name": "gone", "size": 1, "kind": "k"},)");
  WriteWholeFile(folder / "list", list);
  ExpectFailure(
      RunTool({"pack", KWA_PAYLOAD_DIR "/a", folder / "out/archive", "--contents", folder / "list", "--archive", "A"}),
      KWA_PAYLOAD_DIR, {"a: archive A, gone: is missing"});
}

TEST_F(Pack, PlacesThatDoNotDo) {
  ExpectFaults({"in: holds no files"});
  AddFile("a");
  ExpectFaults({"none/archive: cannot be created: No such file or directory"}, "none/archive");
  ExpectFaults({"in/archive: is in the folder that is to be packed"}, "in/archive");
  std::filesystem::create_directory(folder / "out/archive");
  ExpectFaults({"out/archive: exists and is not a file"});
  std::filesystem::remove_all(folder / "in");
  ExpectFaults({"in: cannot be read: No such file or directory"});
}

TEST_F(Pack, EveryFaultOfAFolderIsNamed) {
  for (const char* const name : {"good", "sub/a", "nul.x", "Abc", "ABC", "l\nf", "large"}) {
    AddFile(name);
  }
  std::filesystem::resize_file(folder / "in/large", 0x80000000U);
  ExpectFaults({"in/Abc: is the same name for Windows as ABC", "in/l\\x0Af: the name is not plain printable ASCII",
                "in/large: has 2147483648 bytes; the installer reads bodies below 2147483648",
                "in/nul.x: the name is a device's on Windows", "in/sub: is a folder; an archive holds only files"});
}

TEST_F(Pack, TooLargeForAProgram) {
  AddFile("a");
  AddFile("b");
  std::filesystem::resize_file(folder / "in/a", 0x40000000U);
  std::filesystem::resize_file(folder / "in/b", 0x3FFFFDE4U);
  ExpectFaults({"out/archive: would have 2147483648 bytes; a 32-bit program holds less than 2147483648"});
}

TEST_F(Pack, KeepsAFileThatAppearsMeanwhile) {
  kwa::OutputFile output(folder / "out/archive", kwa::Existing::Kept);
  WriteWholeFile(folder / "out/archive", "of another");
  EXPECT_THROW(output.Commit(), kwa::ToolFailure);
  EXPECT_EQ("of another", ReadWholeFile(folder / "out/archive"));
}

}  // namespace
