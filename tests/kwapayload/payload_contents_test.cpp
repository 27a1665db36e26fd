// The list of contents: what is refused as a list, and how a folder is compared with it.

#include "payload/payload_contents.h"

#include <gtest/gtest.h>

#include "temporary_folder.h"
#include "tool_run.h"

namespace {

TEST(PayloadContents, BadLists) {
  const std::pair<const char*, std::vector<std::string>> kCases[] = {
      {"{\"files\": [\n\n}", {"is not valid JSON: line 3"}},
      {"{\"files\": [{\"size\": 1e999}]}", {"holds a number that is too large"}},
      {"[]", {"has no list \"files\""}},
      {R"({"files": []})", {"has no list \"files\""}},
      {R"({"files": {"a": 1}})", {"has no list \"files\""}},
      {R"({"files": ["x", {"archive": "C", "order": 1.5, "name": "a/b", "size": 2147483648, "kind": ""}]})",
       {"file 1: has no text \"archive\"", "file 1: has no \"order\" between 0 and 2147483647",
        "file 1: has no text \"name\"", "file 1: has no \"size\" between 0 and 2147483647",
        "file 1: has no text \"kind\"", "file 2 (a/b): has an \"archive\" other than A and B",
        "file 2 (a/b): has no \"order\" between 0 and 2147483647",
        "file 2 (a/b): the name holds a '/', which Windows refuses in a bare file name",
        "file 2 (a/b): has no \"size\" between 0 and 2147483647", "file 2 (a/b): has no text \"kind\""}},
      {R"({"files": [{"archive": "A", "order": 1, "name": "a_", "size": 1, "kind": "k"},
                     {"archive": "A", "order": 2, "name": "ab", "size": 1, "kind": "k"},
                     {"archive": "B", "order": 1, "name": "AB", "size": 1, "kind": "k"}]})",
       {"ab has order 2 in archive A; by its upper-case name it is 1",
        "AB is listed twice; to Windows, upper and lower case are the same",
        "a_ has order 1 in archive A; by its upper-case name it is 2"}},
  };
  const TemporaryFolder folder;
  for (const auto& [json, faults] : kCases) {
    WriteWholeFile(folder / "contents.json", json);
    std::vector<std::string> lines;
    for (const std::string& fault : faults) {
      lines.push_back("contents.json: " + fault);
    }
    ExpectFailure(RunTool({"verify", KWA_INSTALLER, "--contents", folder / "contents.json"}), folder.Path(), lines);
  }
}

TEST(PayloadContents, EveryDifferenceOfAFolderIsNamed) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "contents.json",
                 R"({"files": [{"archive": "B", "order": 1, "name": "other", "size": 1, "kind": "k"},
                               {"archive": "A", "order": 2, "name": "same", "size": 3, "kind": "k"},
                               {"archive": "A", "order": 3, "name": "short", "size": 2147483647, "kind": "k"},
                               {"archive": "A", "order": 1, "name": "gone", "size": 1, "kind": "k"}]})");
  WriteWholeFile(folder / "in/same", "123");
  WriteWholeFile(folder / "in/short", "12");
  WriteWholeFile(folder / "in/other", "1");
  ExpectFailure(
      RunTool({"pack", folder / "in", folder / "archive", "--contents", folder / "contents.json", "--archive", "A"}),
      folder.Path(),
      {"in/gone: is missing", "in/short: has 2 bytes instead of 2147483647", "in/other: is not in the list of contents",
       "contents.json: does not fit; if the files are right, 'kwapayload contents " + folder.Path() + "/ --output " +
           (folder / "contents.json") + "' makes a new list"});
  EXPECT_EQ((std::vector<std::string>{"contents.json", "in"}), NamesIn(folder.Path()));
}

}  // namespace
