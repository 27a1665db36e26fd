// Finding the two archives of an installer among its data, sound and with every kind of damage.

#include "payload/archive_reader.h"

#include <gtest/gtest.h>

#include <functional>

#include "built_archive.h"

namespace {

const std::string kNested = BuildArchive({{"nested1", "abc"}, {"nested2", "defg"}});

// Bodies with archives, whole and broken, and the magic alone: none of them is an archive of the installer.
const std::vector<ArchiveBody> kBodiesA = {
    {"driver.inf", "[Version]\r\n"},
    {"driver.sys", "KWAP" + WordBytes(1) + "not a name" + std::string(1000, 's')},
    {"zero", ""},
    {"last.exe", "12345" + kNested.substr(0, 300) + std::string(600, 'e')},
};
const std::vector<ArchiveBody> kBodiesB = {{"dpinst.exe", "12345678"}, {"kwa.bmp", "bbb"}, {"nested.b", kNested}};

// Data of a program: the magic as a constant, and one before a field with a name.
const std::string kLookalike = "KWAP" + WordBytes(1) + "C:\\file" + std::string(253, '\0') + WordBytes(7000);
const std::string kBefore = "KWAP" + std::string(8, '\0') + "KWAP" + kLookalike + std::string(32, '\0');
const std::string kArea = kBefore + BuildArchive(kBodiesA) + "more" + BuildArchive(kBodiesB) + "KWAPzzzz";
const std::size_t kA = kBefore.size();
const std::size_t kB = kA + BuildArchive(kBodiesA).size() + 4;

std::string Place(std::uint64_t offset) {
  return offset == kA ? "A" : offset == kB ? "B" : offset == 16 ? "lookalike" : std::to_string(offset);
}

// What was found: the sound archives with their counts, and the broken ones with what is wrong.
std::string Shown(const std::string& area) {
  std::string text;
  for (const kwa::ParsedArchive& archive : kwa::FindArchives(kwa::ByteSpan(area))) {
    text += Place(archive.offset) + " " + std::to_string(archive.items.size()) + "\n";
  }
  for (const kwa::BrokenArchive& broken : kwa::FindBrokenArchives(kwa::ByteSpan(area))) {
    text += Place(broken.offset) + ": " + broken.fault.code + ": " + broken.fault.where + " " + broken.fault.what + "\n";
  }
  return text;
}

TEST(FindArchives, TellsSoundFromBroken) {
  const auto word = [](std::size_t at, std::uint32_t value) {
    return [=](std::string* area) { PutWord(*area, at, value); };
  };
  const auto text = [](std::size_t at, const std::string& value) {
    return [=](std::string* area) { area->replace(at, value.size(), value); };
  };
  const auto record = [](std::size_t archive, std::size_t index) { return archive + 8 + index * 264; };
  const std::string lookalike = "lookalike: body-past-end: C:\\\\file its body of 7000 bytes runs past the end of the data\n";
  const std::string end = "ends behind entry ";
  const struct {
    std::function<void(std::string*)> damage;
    std::string found;
  } kCases[] = {
      {[](std::string*) {}, "A 4\nB 3\n" + lookalike},
      {text(kB + 3, "\x01"), "A 4\n" + lookalike},
      {word(kA + 4, 0), "B 3\n" + lookalike + "A: no-entries:  has no entries\n"},
      {word(kA + 4, 3), "B 3\n" + lookalike + "A: closing-word:  no zero word follows the last body\n"},
      {word(kA + 4, 5), "B 3\n" + lookalike + "A: name-control:  its table of 5 entries " + end +
                            "4: the next one has a name with control characters\n"},
      {word(kB + 4, 0xFFFFFFFF), "A 4\n" + lookalike +
                                     "B: table-past-end:  ends within its table of 4294967295 entries\n"},
      {text(record(kA, 1), std::string(260, 'n')),
       "B 3\n" + lookalike + "A: name-not-ended:  its table of 4 entries " + end +
           "1: the next one has a name that is not ended within its 260 bytes\n"},
      {text(record(kB, 2), std::string(8, '\0')),
       "A 4\n" + lookalike + "B: name-empty:  its table of 3 entries " + end + "2: the next one has no name\n"},
      {text(record(kA, 3) + 259, "x"), "B 3\n" + lookalike + "A: name-not-zero-filled:  its table of 4 entries " + end +
                                           "3: the next one has bytes other than zero behind its name\n"},
      {word(record(kB, 2) + 260, 0x80000000),
       "A 4\n" + lookalike +
           "B: size-too-large: nested.b has 2147483648 bytes; the installer reads bodies below 2147483648\n"},
      {word(record(kA, 0) + 260, 15),
       "B 3\n" + lookalike + "A: closing-word:  no zero word follows the last body\n"},
      {[](std::string* area) { area->resize(area->size() - 16); },
       "A 4\n" + lookalike + "B: body-past-end: nested.b its body of " + std::to_string(kNested.size()) +
           " bytes runs past the end of the data\n"},
      {[](std::string* area) { area->resize(area->size() - 12); },
       "A 4\n" + lookalike + "B: closing-word:  no zero word follows the last body\n"},
      // Without a name in its first entry nothing is taken for an archive.
      {text(record(kB, 0), "\n"), "A 4\n" + lookalike},
      {[](std::string* area) { area->insert(0, 2, '\0'); }, ""},
  };
  for (const auto& test : kCases) {
    std::string area = kArea;
    test.damage(&area);
    EXPECT_EQ(test.found, Shown(area));
  }
  // Enough to see that there are too many.
  const std::string one = BuildArchive({{"x", "y"}});
  EXPECT_EQ(3U, kwa::FindArchives(kwa::ByteSpan(one + one + one + one)).size());
}

TEST(FindArchives, ItemsAsTheyStand) {
  const auto archives = kwa::FindArchives(kwa::ByteSpan(kArea));
  ASSERT_EQ(kBodiesA.size(), archives.at(0).items.size());
  std::uint64_t position = 8 + kBodiesA.size() * 264;
  for (std::size_t i = 0; i < kBodiesA.size(); ++i) {
    const kwa::ArchiveItem& item = archives[0].items[i];
    EXPECT_EQ(kBodiesA[i].name, item.name);
    EXPECT_EQ(kBodiesA[i].bytes, item.body.Text());
    EXPECT_EQ(kBodiesA[i].bytes.size(), item.size);
    EXPECT_EQ(position, item.position);
    position += item.size + item.padding.Size();
    EXPECT_EQ(0U, position % 4);
  }
  EXPECT_EQ(position, archives[0].size);
}

// Tables made to overlap, each looking sound as far as can be: an answer at once all the same.
TEST(FindArchives, OverlappingTablesTakeNoLongTime) {
  std::string area;
  while (area.size() < 8000000) {
    area += std::string(240, 'x') + "KWAP" + WordBytes(20000) + std::string(12, '\0') + WordBytes(0);
  }
  area = "KWAP" + WordBytes(30000) + area;
  EXPECT_TRUE(kwa::FindArchives(kwa::ByteSpan(area)).empty());
}

TEST(Findings, NoMoreThanAThousand) {
  kwa::Findings findings;
  for (int i = 0; i < 1001; ++i) {
    findings.AddWarning("", "", "some");
  }
  EXPECT_FALSE(findings.HasError());
  findings.AddError("", "", "some");
  kwa::Findings all;
  all.AddAll(findings);
  EXPECT_TRUE(all.HasError());
  EXPECT_EQ(1001, all.end() - all.begin());
  EXPECT_EQ("more-findings", (all.end() - 1)->code);
}

}  // namespace
