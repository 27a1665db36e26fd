// The extract command: which files appear where, and what is refused before anything is written.

#include <gtest/gtest.h>

#include <algorithm>

#include "built_archive.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

class Extract : public testing::Test {
 protected:
  void MakeFile(const std::vector<ArchiveBody>& bodies) { WriteWholeFile(folder / "file", BuildArchive(bodies)); }

  ToolRun Run(const std::string& to, std::vector<std::string> names = {}) {
    names.insert(names.begin(), {"extract", folder / "file", folder / to});
    return RunTool(names);
  }

  const TemporaryFolder folder;
};

TEST_F(Extract, AllOrTheNamedFiles) {
  std::filesystem::create_symlink(KWA_INSTALLER, folder / "file");
  EXPECT_EQ(0, Run("new/all").status);
  std::size_t count = 0;
  for (const char* const archive : {"/a", "/b"}) {
    for (const std::string& name : NamesIn(std::string(KWA_PAYLOAD_DIR) + archive)) {
      EXPECT_TRUE(ReadWholeFile(std::string(KWA_PAYLOAD_DIR) + archive + "/" + name) ==
                  ReadWholeFile(folder / ("new/all/" + name)))
          << name;
      ++count;
    }
  }
  EXPECT_EQ(count, NamesIn(folder / "new/all").size());
  EXPECT_EQ(0, Run("some", {"kwa.bmp", "PANORAMA.CHM"}).status);
  EXPECT_EQ((std::vector<std::string>{"Panorama.chm", "kwa.bmp"}), NamesIn(folder / "some"));
  ExpectFailure(Run("none", {"kwa.bmp", "no\x1Fne"}), folder.Path(), {"file: holds no file no\\x1Fne"});
  EXPECT_FALSE(std::filesystem::exists(folder / "none"));
  EXPECT_EQ(0, Run("payload", {"--payload"}).status);
  EXPECT_EQ((std::vector<std::string>{"a", "b", "contents.json"}), NamesIn(folder / "payload"));
  EXPECT_EQ(0, RunTool({"verify", folder / "payload", "--contents", folder / "payload/contents.json"}).status);
  ExpectFailure(Run("file/out"), folder.Path(), {"file/out: cannot be created: Not a directory"});
}

// A link in the folder is replaced, never followed.
TEST_F(Extract, OverwritesOnlyWithForceAndFollowsNoLink) {
  MakeFile({{"abc.txt", "abc"}, {"empty", ""}, {"link", "new"}});
  WriteWholeFile(folder / "outside", "mine");
  WriteWholeFile(folder / "out/abc.txt", "mine");
  std::filesystem::create_symlink(folder / "outside", folder / "out/link");
  std::filesystem::create_symlink(folder / "nowhere", folder / "out/empty");
  const std::string exists = ": exists; --force overwrites it";
  ExpectFailure(Run("out"), folder.Path(), {"out/abc.txt" + exists, "out/empty" + exists, "out/link" + exists});
  EXPECT_EQ("mine", ReadWholeFile(folder / "out/abc.txt"));
  EXPECT_EQ(0, Run("out", {"--force"}).status);
  EXPECT_EQ("mine", ReadWholeFile(folder / "outside"));
  EXPECT_EQ("abc", ReadWholeFile(folder / "out/abc.txt"));
  EXPECT_EQ("new", ReadWholeFile(folder / "out/link"));
  EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
  std::filesystem::create_directories(folder / "folder/empty");
  ExpectFailure(Run("folder", {"--force", "empty"}), folder.Path(), {"folder/empty: is a folder"});
}

TEST_F(Extract, RefusesNamesThatLeadOutside) {
  for (const std::string name : {"../up", "..", "/abs", "..\\up", "C:x", "NUL", "a:s", "b."}) {
    MakeFile({{"good", "1"}, {name, "2"}});
    const ToolRun run = Run("out");
    EXPECT_EQ(2, run.status) << name;
    EXPECT_EQ(1, std::count(run.errors.begin(), run.errors.end(), '\n')) << run.errors;
    EXPECT_EQ(std::vector<std::string>{"file"}, NamesIn(folder.Path())) << name;
  }
  // The good ones can be had by name.
  EXPECT_EQ(0, Run("out", {"good"}).status);
  MakeFile({{"a", "1"}, {"A", "2"}});
  ExpectFailure(Run("out", {"--force"}), folder.Path(),
                {"file: A is there twice; for Windows, upper and lower case are the same"});
  EXPECT_EQ(std::vector<std::string>{"good"}, NamesIn(folder / "out"));
}

}  // namespace
