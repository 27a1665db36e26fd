// The commands that write files: which files appear where, byte for byte, and that a failure says what is wrong and
// leaves no file.

#include <algorithm>

#include "files/output_file.h"
#include "files/tool_failure.h"
#include "tool_test.h"

namespace {

using Names = std::vector<std::string>;

// A folder `in` to be packed and a folder `out` for the archive.
class Pack : public ToolTest {
 protected:
  void SetUp() override {
    folder.MakeFolder("in");
    folder.MakeFolder("out");
  }

  // Packs, and expects these faults and an untouched `out`.
  void ExpectFaults(const Names& faults, const std::string& archive = "out/archive", const Names& options = {}) const {
    const Names before = NamesIn(folder / "out");
    Names arguments = {"pack", folder / "in", folder / archive};
    arguments.insert(arguments.end(), options.begin(), options.end());
    ExpectFailure(arguments, faults);
    EXPECT_EQ(before, NamesIn(folder / "out"));
  }
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
    MakeFile("in/" + body.name, body.bytes);
  }
  const ToolRun run = RunTool({"pack", folder / "in", MakeFile("out/archive", "old")});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.errors + run.output, "");
  EXPECT_TRUE(BuildArchive(bodies) == ReadWholeFile(folder / "out/archive"));
  EXPECT_EQ(NamesIn(folder / "out"), Names{"archive"});
}

TEST_F(Pack, EveryDifferenceFromTheListIsNamed) {
  const Names options = {"--contents", folder / "contents.json", "--archive", "A"};
  const std::string sameAndGone =
      R"({"archive": "A", "name": "same", "size": 3, "kind": "7-bit ASCII text, no line ends"},
                                     {"archive": "A", "name": "gone", "size": 1, "kind": "k"})";
  MakeFile("in/same", "123");
  // A new list would hide what is missing.
  MakeFile("contents.json", R"({"files": [)" + sameAndGone + "]}");
  ExpectFaults({"in: archive A, gone: is missing"}, "out/archive", options);
  MakeFile("contents.json", R"({"files": [{"archive": "B", "name": "other", "size": 1, "kind": "k"},
                                 {"archive": "A", "name": "short", "size": 2147483647, "kind": "k"},)" +
                                sameAndGone + "]}");
  MakeFile("in/short", "12");
  MakeFile("in/other", "1");
  ExpectFaults(
      {"in: archive A, other: is in the place of gone", "in: archive A, short: has 2 bytes instead of 2147483647",
       "contents.json: does not fit; if the files are right, 'kwapayload contents " + folder.Path() + "/ --output " +
           (folder / "contents.json") + "' makes a new list"},
      "out/archive", options);
  MakeFile("contents.json", R"({"files": [{"archive": "A", "name": "same", "size": -1}]})");
  ExpectFaults({"contents.json: file 1 (same): has no \"size\" between 0 and 2147483647",
                "contents.json: file 1 (same): has no text \"kind\""},
               "out/archive", options);
}

TEST_F(Pack, PlacesThatDoNotDo) {
  ExpectFaults({"in: holds no files"});
  MakeFile("in/a", "1");
  ExpectFaults({"none/archive: cannot be created: No such file or directory"}, "none/archive");
  ExpectFaults({"in/archive: is in the folder that is to be packed"}, "in/archive");
  folder.MakeFolder("out/archive");
  ExpectFaults({"out/archive: exists and is not a file"});
  std::filesystem::remove_all(folder / "in");
  ExpectFaults({"in: cannot be read: No such file or directory"});
}

TEST_F(Pack, EveryFaultOfAFolderIsNamed) {
  for (const std::string name : {"good", "sub/a", "nul.x", "Abc", "ABC", "l\nf", "large"}) {
    MakeFile("in/" + name, "1");
  }
  std::filesystem::resize_file(folder / "in/large", 0x80000000U);
  ExpectFaults({"in/Abc: is the same name for Windows as ABC", "in/l\\x0Af: the name is not plain printable ASCII",
                "in/large: has 2147483648 bytes; the installer reads bodies below 2147483648",
                "in/nul.x: the name is a device's on Windows", "in/sub: is a folder; an archive holds only files"});
}

TEST_F(Pack, TooLargeForAProgram) {
  std::filesystem::resize_file(MakeFile("in/a", ""), 0x40000000U);
  std::filesystem::resize_file(MakeFile("in/b", ""), 0x3FFFFDE4U);
  ExpectFaults({"out/archive: would have 2147483648 bytes; a 32-bit program holds less than 2147483648"});
}

TEST_F(Pack, KeepsAFileThatAppearsMeanwhile) {
  kwa::OutputFile output(folder / "out/archive", kwa::Existing::Kept);
  MakeFile("out/archive", "of another");
  EXPECT_THROW(output.Commit(), kwa::ToolFailure);
  EXPECT_EQ(ReadWholeFile(folder / "out/archive"), "of another");
}

using Contents = ToolTest;

TEST_F(Contents, IsTheListOfAPayloadFolder) {
  const std::string committed = ReadWholeFile(KWA_CONTENTS);
  EXPECT_EQ(RunTool({"contents", KWA_PAYLOAD_DIR}).output, committed);
  EXPECT_EQ(RunTool({"contents", KWA_PAYLOAD_DIR, "--output", folder / "list"}).status, 0);
  EXPECT_EQ(ReadWholeFile(folder / "list"), committed);
  MakeFile("b/ONE", "");
  ExpectFailure({"contents", folder.Path(), "--output", folder / "new"},
                {"b/ONE: is the same name for Windows as " + MakeFile("a/one", "")});
  EXPECT_EQ(NamesIn(folder.Path()), (Names{"a", "b", "list"}));
}

class Extract : public ToolTest {
 protected:
  Names To(const std::string& to, Names names = {}) const {
    names.insert(names.begin(), {"extract", folder / "file", folder / to});
    return names;
  }
};

TEST_F(Extract, AllOrTheNamedFiles) {
  std::filesystem::create_symlink(KWA_INSTALLER, folder / "file");
  EXPECT_EQ(RunTool(To("new/all")).status, 0);
  std::size_t count = 0;
  for (const std::string archive : {KWA_PAYLOAD_DIR "/a/", KWA_PAYLOAD_DIR "/b/"}) {
    for (const std::string& name : NamesIn(archive)) {
      EXPECT_TRUE(ReadWholeFile(archive + name) == ReadWholeFile(folder / ("new/all/" + name))) << name;
      ++count;
    }
  }
  EXPECT_EQ(NamesIn(folder / "new/all").size(), count);
  EXPECT_EQ(RunTool(To("some", {"kwa.bmp", "PANORAMA.CHM"})).status, 0);
  EXPECT_EQ(NamesIn(folder / "some"), (Names{"Panorama.chm", "kwa.bmp"}));
  ExpectFailure(To("none", {"kwa.bmp", "no\x1Fne"}), {"file: holds no file no\\x1Fne"});
  EXPECT_FALSE(std::filesystem::exists(folder / "none"));
  EXPECT_EQ(RunTool(To("payload", {"--payload"})).status, 0);
  EXPECT_EQ(NamesIn(folder / "payload"), (Names{"a", "b", "contents.json"}));
  EXPECT_EQ(RunTool({"verify", folder / "payload", "--contents", folder / "payload/contents.json"}).status, 0);
  ExpectFailure(To("file/out"), {"file/out: cannot be created: Not a directory"});
}

// A link in the folder is replaced, never followed.
TEST_F(Extract, OverwritesOnlyWithForceAndFollowsNoLink) {
  MakeFile("file", BuildArchive({{"abc.txt", "abc"}, {"empty", ""}, {"link", "new"}}));
  MakeFile("out/abc.txt", "mine");
  std::filesystem::create_symlink(MakeFile("outside", "mine"), folder / "out/link");
  std::filesystem::create_symlink(folder / "nowhere", folder / "out/empty");
  const std::string exists = ": exists; --force overwrites it";
  ExpectFailure(To("out"), {"out/abc.txt" + exists, "out/empty" + exists, "out/link" + exists});
  EXPECT_EQ(ReadWholeFile(folder / "out/abc.txt"), "mine");
  EXPECT_EQ(RunTool(To("out", {"--force"})).status, 0);
  EXPECT_EQ(ReadWholeFile(folder / "outside"), "mine");
  EXPECT_EQ(ReadWholeFile(folder / "out/abc.txt"), "abc");
  EXPECT_EQ(ReadWholeFile(folder / "out/link"), "new");
  EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
  folder.MakeFolder("folder/empty");
  ExpectFailure(To("folder", {"--force", "empty"}), {"folder/empty: is a folder"});
}

TEST_F(Extract, RefusesNamesThatLeadOutside) {
  for (const std::string name : {"../up", "..", "/abs", "..\\up", "C:x", "NUL", "a:s", "b."}) {
    MakeFile("file", BuildArchive({{"good", "1"}, {name, "2"}}));
    const ToolRun run = RunTool(To("out"));
    EXPECT_EQ(run.status, 2) << name;
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
    EXPECT_EQ(NamesIn(folder.Path()), Names{"file"}) << name;
  }
  // The good ones can be had by name.
  EXPECT_EQ(RunTool(To("out", {"good"})).status, 0);
  MakeFile("file", BuildArchive({{"a", "1"}, {"A", "2"}}));
  ExpectFailure(To("out", {"--force"}), {"file: A is there twice; for Windows, upper and lower case are the same"});
  EXPECT_EQ(NamesIn(folder / "out"), Names{"good"});
}

}  // namespace
