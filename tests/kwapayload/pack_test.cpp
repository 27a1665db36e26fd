// The pack command: which names an archive may hold and how Windows compares them, archives byte for byte, and that a
// failure says what is wrong and leaves nothing behind.

#include "files/pack_archive.h"

#include <gtest/gtest.h>

#include <csignal>

#include "base/ascii_text.h"
#include "files/tool_failure.h"
#include "built_archive.h"
#include "payload/entry_name.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

TEST(EntryName, GoodAndBadNames) {
  const std::string kRefused = "which Windows refuses in a bare file name";
  const std::string kDevice = "the name is a device's on Windows";
  const std::string kCharacters = "the name is not plain printable ASCII";
  const std::string kEnd = "the name ends in a dot or blank, which Windows drops";
  // clang-format off
  const std::pair<std::string, std::string> kCases[] = {
      {"marlin_usb.inf", ""}, {".x", ""}, {"COM10", ""}, {"nul_.txt", ""}, {"xNUL", ""}, {"~!@#$%^&()[]{}'`,=+-", ""},
      {std::string(259, 'n'), ""}, {std::string(260, 'n'), "the name has 260 bytes; an archive holds at most 259"},
      {"", "the name is empty"}, {"..", kEnd}, {"a ", kEnd}, {"nul.txt", kDevice}, {"Con .log", kDevice},
      {"com0", kDevice}, {"LPT9.x.y", kDevice}, {"CONIN$", kDevice}, {"\xC3\xBC", kCharacters}, {"a\x1F", kCharacters},
      {"a\x7F", kCharacters}, {"C:x", "the name holds a ':', " + kRefused}, {"a\\b", "the name holds a '\\', " + kRefused},
      {"a;b", "the name holds a ';', at which the build's lists of files are split"},
  };
  // clang-format on
  for (const auto& [name, fault] : kCases) {
    EXPECT_EQ(fault, kwa::EntryNameFault(name)) << name;
  }
  EXPECT_EQ("[\\]{|}AZ", kwa::UpperCase("[\\]{|}az"));
}

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
  void ExpectFaults(const std::vector<std::string>& faults, const std::string& archive = "out/archive",
                    const std::string& before = "") {
    const auto namesBefore = NamesIn(folder / "out");
    ExpectFailure(RunTool({"pack", folder / "in", folder / archive}, before), folder.Path(), faults);
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

TEST_F(Pack, DepfileEscapesWhatMakeReads) {
  AddFile("a b#c$d");
  AddFile("e");
  WriteWholeFile(folder / "contents.json",
                 R"({"files": [{"archive": "B", "order": 1, "name": "a b#c$d", "size": 1, "kind": "k"},
                               {"archive": "B", "order": 2, "name": "e", "size": 1, "kind": "k"}]})");
  EXPECT_EQ(0, RunTool({"pack", folder / "in", folder / "out/archive", "--contents", folder / "contents.json",
                        "--archive", "B", "--depfile", folder / "out/d"})
                   .status);
  const std::string& root = folder.Path();
  EXPECT_EQ(root + "/out/archive: \\\n  " + root + "/in/a\\ b\\#c$$d \\\n  " + root + "/in/e \\\n  " + root +
                "/contents.json\n",
            ReadWholeFile(folder / "out/d"));
}

TEST_F(Pack, PlacesThatDoNotDo) {
  ExpectFaults({"in: holds no files"});
  AddFile("a");
  ExpectFaults({"none/archive: cannot be created: No such file or directory"}, "none/archive");
  ExpectFaults({"in/archive: lies in the folder that is to be packed"}, "in/archive");
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
  ExpectFaults({"in/Abc: is to Windows the same name as ABC", "in/l\\x0Af: the name is not plain printable ASCII",
                "in/large: has 2147483648 bytes; the installer reads bodies below 2147483648",
                "in/nul.x: the name is a device's on Windows", "in/sub: is a folder; an archive holds only files"});
}

TEST_F(Pack, NoRoom) {
  AddFile("a", std::string(300000, 'x'));
  AddFile("b");
  WriteWholeFile(folder / "out/archive", "old");
  ExpectFaults({"out/archive: cannot be written: File too large"}, "out/archive", "ulimit -f 64; ");
  EXPECT_EQ("old", ReadWholeFile(folder / "out/archive"));
  std::filesystem::resize_file(folder / "in/a", 0x40000000U);
  std::filesystem::resize_file(folder / "in/b", 0x3FFFFDE4U);
  ExpectFaults({"out/archive: would have 2147483648 bytes; a 32-bit program holds less than 2147483648"});
}

// The file to be packed is large enough that the signal finds it half packed.
TEST_F(Pack, EndedBySignalLeavesNothing) {
  AddFile("a");
  std::filesystem::resize_file(folder / "in/a", 0x60000000U);
  const std::string out = folder / "out";
  const ToolRun run =
      RunTool({"pack", folder / "in", out + "/archive"},
              "sh -c '\"$@\" & until ls " + out + "/*.tmp; do kill -0 $! || exit 1; done; kill $!; wait $!' sh ");
  EXPECT_EQ(128 + SIGTERM, run.status) << run.errors;
  EXPECT_EQ(std::vector<std::string>{}, NamesIn(out));
}

TEST_F(Pack, KeepsWhatCameToBeMeanwhile) {
  kwa::OutputFile output(folder / "out/archive", kwa::Existing::Kept);
  WriteWholeFile(folder / "out/archive", "of another");
  EXPECT_THROW(output.Commit(), kwa::ToolFailure);
  EXPECT_EQ("of another", ReadWholeFile(folder / "out/archive"));
  std::filesystem::remove_all(folder / "out");  // with the temporary file
  std::filesystem::create_directory(folder / "out");
  EXPECT_THROW(output.Commit(), kwa::ToolFailure);
  EXPECT_EQ(std::vector<std::string>{}, NamesIn(folder / "out"));
}

// A file that another program writes to meanwhile.
TEST_F(Pack, SizeChangesWhilePacking) {
  AddFile("a", std::string(200000, 'x'));
  for (const std::uint64_t size : {199999, 200001}) {
    kwa::OutputFile output(folder / "out/archive");
    EXPECT_THROW(kwa::PackArchive({{"a", folder / "in/a", size}}, folder / "out/archive", output), kwa::ToolFailure);
  }
  EXPECT_EQ(std::vector<std::string>{}, NamesIn(folder / "out"));
}

TEST(Misuse, EndsWithStatus2) {
  for (const std::string arguments :
       {"", "unpack in", "pack in", "pack in out more", "pack in out --contents c", "pack in out --archive A",
        "pack in out --contents c --archive C", "pack in out --contents \"\" --archive A", "list", "extract a",
        "verify", "preview", "preview a --windows 95"}) {
    const ToolRun run = RunTool({}, "sh -c '\"$@\" " + arguments + "' sh ");
    EXPECT_EQ(2, run.status) << arguments;
    EXPECT_EQ(0U, run.errors.find("kwapayload: ")) << run.errors;
    EXPECT_EQ("", run.output);
  }
}

}  // namespace
