// Archives among the data of a program, sound and damaged; the names that an archive may hold; the list of contents.
// The codes of all damages are in the table of verify.

#include <gtest/gtest.h>

#include "base/ascii_text.h"
#include "built_archive.h"
#include "payload/archive_reader.h"
#include "payload/entry_name.h"
#include "payload/payload_contents.h"

namespace {

const std::string kNested = BuildArchive({{"nested", "abc"}});

// Bodies with archives, whole and broken, and the magic alone: none of them is an archive of the installer.
const std::vector<ArchiveBody> kBodiesA = {
    {"driver.inf", "[Version]\r\n"},
    {"driver.sys", "KWAP" + WordBytes(1) + "not a name" + std::string(1000, 's')},
    {"zero", ""},
    {"last.exe", "12345" + kNested.substr(0, 300) + kNested},
};
// Before them is data of a program: the magic as a constant, and the magic before a field with a name.
const std::string kBefore = "KWAPKWAP" + WordBytes(1) + "C:\\file" + std::string(253, '\0') + WordBytes(9000);
const std::string kBeforeB = kBefore + BuildArchive(kBodiesA) + "more";
const std::string kArea =
    kBeforeB + BuildArchive({{"dpinst.exe", "12345678"}, {"kwa.bmp", "bbb"}, {"last", "1"}}) + std::string(300, 'z');

// The sound archives with the sizes of their bodies, and the broken ones with what is wrong.
std::string Shown(const std::string& area) {
  const kwa::FoundArchives found = kwa::FindArchives(kwa::ByteSpan(area));
  std::string text;
  for (const kwa::ParsedArchive& archive : found.sound) {
    text += std::to_string(archive.offset) + ":";
    for (const kwa::ArchiveItem& item : archive.items) {
      EXPECT_EQ(item.body.Text(), area.substr(item.fileOffset, item.body.Size()));
      EXPECT_EQ(item.fileOffset, archive.offset + item.position);
      text += " " + std::to_string(item.body.Size());
    }
    text += "\n";
  }
  for (const kwa::BrokenArchive& broken : found.broken) {
    text += std::to_string(broken.offset) + " " + broken.fault.code + ": " + broken.fault.where + "\n";
  }
  return text;
}

TEST(FindArchives, DistinguishesSoundAndBroken) {
  const std::string foundA =
      std::to_string(kBefore.size()) + ": 11 1018 0 " + std::to_string(kBodiesA[3].bytes.size()) + "\n";
  const std::string foundB = std::to_string(kBeforeB.size()) + ": 8 3 1\n";
  const std::string lookalike = "4 body-past-end: C:\\file\n";
  EXPECT_EQ(foundA + foundB + lookalike, Shown(kArea));
  EXPECT_EQ("", Shown("  " + kArea));

  const auto record = [](std::size_t index) { return 8 + index * 264; };
  const struct {
    std::size_t at;  // in archive B
    std::string bytes;
    std::string fault;  // "" for bytes that do not begin like an archive
  } kDamages[] = {
      {3, "\x01", ""},
      {record(0), "\n", ""},
      {record(1) - 4, WordBytes(0x80000000), "size-too-large: dpinst.exe"},
      {record(3) - 4, WordBytes(999), "body-past-end: last"},
  };
  for (const auto& damage : kDamages) {
    const std::string area = Replaced(kArea, kBeforeB.size() + damage.at, damage.bytes);
    const std::string fault = std::to_string(kBeforeB.size()) + " " + damage.fault + "\n";
    EXPECT_EQ(foundA + lookalike + (damage.fault.empty() ? "" : fault), Shown(area));
  }
  // Three show that there are too many.
  EXPECT_EQ(3U, kwa::FindArchives(kwa::ByteSpan(Repeated(4, kNested))).sound.size());
  const std::string many = Repeated(20, kNested.substr(0, 272));
  EXPECT_EQ(16U, kwa::FindArchives(kwa::ByteSpan(many)).broken.size());
}

TEST(EntryName, GoodAndBadNames) {
  // A word of the reason, and the names with it.
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"",
       {"marlin_usb.inf", ".x", "COM10", "comx", "nul_.txt", "xNUL", "~!@#$%^&()[]{}'`,=+-", std::string(259, 'n')}},
      {"260", {std::string(260, 'n')}},
      {"empty", {""}},
      {"dot", {"..", "a "}},
      {"device", {"nul.txt", "Con .log", "com0", "LPT9.x.y", "CONIN$"}},
      {"ASCII", {"\xC3\xBC", "a\x1F", "a\x7F"}},
      {"':'", {"C:x"}},
      {"'\\'", {"a\\b"}},
      {"'/'", {"a/b"}},
      {"';'", {"a;b"}},
  };
  for (const auto& [reason, names] : cases) {
    for (const std::string& name : names) {
      const kwa::Check check = kwa::CheckEntryName(name);
      EXPECT_EQ(check.has_value(), reason.empty()) << name;
      EXPECT_TRUE(check || check.error().what.find(reason) != std::string::npos) << check.error().what;
    }
  }
  EXPECT_EQ("[\\]{|}AZ", kwa::UpperCase("[\\]{|}az"));
}

TEST(PayloadContents, BadLists) {
  const std::pair<std::string, std::vector<std::string>> cases[] = {
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
  for (const auto& [json, faults] : cases) {
    const auto contents = kwa::ReadPayloadContents(kwa::ByteSpan(json));
    ASSERT_FALSE(contents) << json;
    EXPECT_EQ(faults, contents.error()) << json;
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
