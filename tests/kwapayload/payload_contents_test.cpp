// The list of contents: what is refused as a list, and how a folder is compared with it.

#include "payload/payload_contents.h"

#include <gtest/gtest.h>

#include "temporary_folder.h"
#include "tool_run.h"

namespace {

struct BadList {
  const char* json;
  std::vector<std::string> faults;
};

TEST(PayloadContents, BadLists) {
  const BadList kCases[] = {
      {"{\"files\": [\n\n}", {"is not valid JSON: line 3"}},
      {"", {"is not valid JSON: line 1"}},
      {"[]", {"has no list \"files\""}},
      {"{}", {"has no list \"files\""}},
      {R"({"files": []})", {"has no list \"files\""}},
      {R"({"files": {"a": 1}})", {"has no list \"files\""}},
      {R"({"files": ["x", {"archive": "C", "order": 1.5, "name": "a/b", "size": 2147483648, "kind": ""}]})",
       {"file 1: has no text \"archive\"", "file 1: has no \"order\" between 0 and 2147483647",
        "file 1: has no text \"name\"", "file 1: has no \"size\" between 0 and 2147483647",
        "file 1: has no text \"kind\"", "file 2 (a/b): has an \"archive\" other than A and B",
        "file 2 (a/b): has no \"order\" between 0 and 2147483647",
        "file 2 (a/b): the name holds a '/', which Windows refuses in a bare file name",
        "file 2 (a/b): has no \"size\" between 0 and 2147483647", "file 2 (a/b): has no text \"kind\""}},
      {R"({"files": [{"archive": "A", "order": -1, "name": "a", "size": "1", "kind": "k"}]})",
       {"file 1 (a): has no \"order\" between 0 and 2147483647",
        "file 1 (a): has no \"size\" between 0 and 2147483647"}},
      {R"({"files": [{"archive": "A", "order": 1, "name": "a_", "size": 1, "kind": "k"},
                     {"archive": "A", "order": 2, "name": "ab", "size": 1, "kind": "k"},
                     {"archive": "B", "order": 1, "name": "AB", "size": 1, "kind": "k"}]})",
       {"ab has order 2 in archive A; by its upper-case name it is 1",
        "AB is listed twice; to Windows, upper and lower case are the same",
        "a_ has order 1 in archive A; by its upper-case name it is 2"}},
  };
  const TemporaryFolder folder;
  const std::string path = folder / "contents.json";
  for (const BadList& badList : kCases) {
    WriteWholeFile(path, badList.json);
    std::vector<std::string> faults;
    try {
      kwa::ReadPayloadContents(path);
    } catch (const kwa::ToolFailure& failure) {
      for (const kwa::Fault& fault : failure.Faults()) {
        EXPECT_EQ(path, fault.file);
        faults.push_back(fault.what);
      }
    }
    EXPECT_EQ(badList.faults, faults) << badList.json;
  }
}

TEST(PayloadContents, ListsInTheOrderOfTheArchives) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "contents.json",
                 R"({"files": [{"archive": "B", "order": 1, "name": "c", "size": 3, "kind": "z"},
                               {"archive": "A", "order": 2, "name": "b", "size": 2, "kind": "y"},
                               {"archive": "A", "order": 1, "name": "a", "size": 2147483647, "kind": "x"}]})");
  std::string shown;
  for (const kwa::ContentsFile& file : kwa::ReadPayloadContents(folder / "contents.json")) {
    shown += file.archive + std::to_string(file.order) + file.name + std::to_string(file.size) + file.kind + " ";
  }
  EXPECT_EQ("A1a2147483647x A2b2y B1c3z ", shown);
}

TEST(PayloadContents, EveryDifferenceOfAFolderIsNamed) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "contents.json",
                 R"({"files": [{"archive": "A", "order": 1, "name": "gone", "size": 1, "kind": "k"},
                               {"archive": "A", "order": 2, "name": "same", "size": 3, "kind": "k"},
                               {"archive": "A", "order": 3, "name": "short", "size": 3, "kind": "k"},
                               {"archive": "B", "order": 1, "name": "other", "size": 1, "kind": "k"}]})");
  WriteWholeFile(folder / "in/same", "123");
  WriteWholeFile(folder / "in/short", "12");
  WriteWholeFile(folder / "in/other", "1");
  const ToolRun run =
      RunTool({"pack", folder / "in", folder / "archive", "--contents", folder / "contents.json", "--archive", "A"});
  const std::string in = "kwapayload: " + (std::filesystem::path(folder / "in") / "").string();
  EXPECT_EQ(1, run.status);
  EXPECT_EQ(in + "gone: is missing\n" + in + "short: has 2 bytes instead of 3\n" + in +
                "other: is not in the list of contents\n",
            run.errors);
  EXPECT_EQ((std::vector<std::string>{"contents.json", "in"}), NamesIn(folder.Path()));
}

}  // namespace
