// The list of contents: what is refused, and that a written list is read again.

#include "payload/payload_contents.h"

#include <gtest/gtest.h>

namespace {

std::vector<std::string> FaultsOf(const std::string& json) {
  const auto contents = kwa::ReadPayloadContents(kwa::ByteSpan(json));
  return contents ? std::vector<std::string>() : contents.error();
}

TEST(PayloadContents, BadLists) {
  const std::pair<const char*, std::vector<std::string>> kCases[] = {
      {"{\"files\": [\n\n}", {"is not valid JSON: line 3"}},
      {"{\"files\": [{\"size\": 1e999}]}", {"holds a number that is too large"}},
      {"[]", {"has no list \"files\""}},
      {R"({"files": []})", {"has no list \"files\""}},
      {R"({"files": {"a": 1}})", {"has no list \"files\""}},
      {R"({"files": ["x", {"archive": "C", "name": "a/b", "size": 2147483648, "kind": ""}]})",
       {"file 1: has no text \"archive\"", "file 1: has no text \"name\"",
        "file 1: has no \"size\" between 0 and 2147483647", "file 1: has no text \"kind\"",
        "file 2 (a/b): has an \"archive\" other than A and B", "file 2 (a/b): has no \"size\" between 0 and 2147483647",
        "file 2 (a/b): has no text \"kind\"",
        "file 2 (a/b): the name holds a '/', which Windows refuses in a bare file name"}},
      {R"({"files": [{"archive": "A", "name": "ab", "size": 1, "kind": "k"},
                     {"archive": "B", "name": "AB", "size": 1, "kind": "k"}]})",
       {"AB is listed twice; for Windows, upper and lower case are the same"}},
  };
  for (const auto& [json, faults] : kCases) {
    EXPECT_EQ(faults, FaultsOf(json)) << json;
  }
}

// Lists of earlier releases also have the order of the files, which follows from their names.
TEST(PayloadContents, IsSortedAndWrittenOneLineAFile) {
  const std::string json = R"({"note": 1, "files": [
      {"archive": "B", "order": 1, "name": "b", "size": 2147483647, "kind": "k\"\u00e4"},
      {"archive": "A", "order": 1, "name": "a_", "size": 0, "kind": "k"},
      {"archive": "A", "order": 9, "name": "Ab", "size": 1, "kind": "k"}]})";
  const std::string expected =
      "{\n  \"files\": [\n"
      "    {\"archive\": \"A\", \"name\": \"Ab\", \"size\": 1, \"kind\": \"k\"},\n"
      "    {\"archive\": \"A\", \"name\": \"a_\", \"size\": 0, \"kind\": \"k\"},\n"
      "    {\"archive\": \"B\", \"name\": \"b\", \"size\": 2147483647, \"kind\": \"k\\\"\xC3\xA4\"}\n  ]\n}\n";
  for (const std::string& text : {json, expected}) {
    const auto contents = kwa::ReadPayloadContents(kwa::ByteSpan(text));
    ASSERT_TRUE(contents);
    EXPECT_EQ(expected, kwa::ContentsText(*contents));
  }
}

}  // namespace
