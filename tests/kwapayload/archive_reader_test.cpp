// Finding the two archives of an installer among its data, sound and with every kind of damage.

#include "payload/archive_reader.h"

#include <gtest/gtest.h>

#include "built_archive.h"

namespace {

const std::string kNested = BuildArchive({{"nested", "abc"}});

// Bodies with archives, whole and broken, and the magic alone: none of them is an archive of the installer.
const std::vector<ArchiveBody> kBodiesA = {
    {"driver.inf", "[Version]\r\n"},
    {"driver.sys", "KWAP" + WordBytes(1) + "not a name" + std::string(1000, 's')},
    {"zero", ""},
    {"last.exe", "12345" + kNested.substr(0, 300) + kNested},
};
// Before them data of a program: the magic as a constant, and one before a field with a name.
const std::string kBefore = "KWAPKWAP" + WordBytes(1) + "C:\\file" + std::string(253, '\0') + WordBytes(9000);
const std::string kBeforeB = kBefore + BuildArchive(kBodiesA) + "more";
const std::string kArea =
    kBeforeB + BuildArchive({{"dpinst.exe", "12345678"}, {"kwa.bmp", "bbb"}, {"last", "1"}}) + std::string(300, 'z');

// What was found: the sound archives with their counts, and the broken ones with what is wrong.
std::string Shown(const std::string& area) {
  std::string text;
  for (const kwa::ParsedArchive& archive : kwa::FindArchives(kwa::ByteSpan(area))) {
    text += std::to_string(archive.offset) + ": " + std::to_string(archive.items.size()) + "\n";
  }
  for (const kwa::BrokenArchive& broken : kwa::FindBrokenArchives(kwa::ByteSpan(area))) {
    const kwa::Finding& fault = broken.fault;
    text += std::to_string(broken.offset) + " " + fault.code + ": " + fault.where + " " + fault.what + "\n";
  }
  return text;
}

TEST(FindArchives, TellsSoundFromBroken) {
  const std::string foundA = std::to_string(kBefore.size()) + ": 4\n";
  const std::string foundB = std::to_string(kBeforeB.size()) + ": 3\n";
  const std::string lookalike = "4 body-past-end: C:\\\\file its body of 9000 bytes runs past the end of the data\n";
  EXPECT_EQ(foundA + foundB + lookalike, Shown(kArea));
  EXPECT_EQ("", Shown("  " + kArea));

  const auto record = [](std::size_t index) { return 8 + index * 264; };
  const std::string ends = " entries ends behind entry ";
  const struct {
    std::size_t at;  // in archive B
    std::string bytes;
    std::string fault;  // "" where nothing is taken for an archive
  } kDamages[] = {
      {3, "\x01", ""},
      {record(0), "\n", ""},
      {4, WordBytes(0), "no-entries:  has no entries"},
      {4, WordBytes(4),
       "name-not-zero-filled:  its table of 4" + ends + "3: the next one has bytes other than zero behind its name"},
      {4, WordBytes(0xFFFFFFFF), "table-past-end:  ends within its table of 4294967295 entries"},
      {record(1), std::string(260, 'n'),
       "name-not-ended:  its table of 3" + ends + "1: the next one has a name that is not ended within its 260 bytes"},
      {record(2), std::string(4, '\0'), "name-empty:  its table of 3" + ends + "2: the next one has no name"},
      {record(2), "\x1F",
       "name-control:  its table of 3" + ends + "2: the next one has a name with control characters"},
      {record(1) - 4, WordBytes(0x80000000),
       "size-too-large: dpinst.exe has 2147483648 bytes; the installer reads bodies below 2147483648"},
      {record(3) - 4, WordBytes(999), "body-past-end: last its body of 999 bytes runs past the end of the data"},
      {record(3) - 4, WordBytes(5), "closing-word:  no zero word follows the last body"},
  };
  for (const auto& damage : kDamages) {
    std::string area = kArea;
    area.replace(kBeforeB.size() + damage.at, damage.bytes.size(), damage.bytes);
    const std::string fault = std::to_string(kBeforeB.size()) + " " + damage.fault + "\n";
    EXPECT_EQ(foundA + lookalike + (damage.fault.empty() ? "" : fault), Shown(area));
  }
  // Enough to see that there are too many.
  EXPECT_EQ(3U, kwa::FindArchives(kwa::ByteSpan(kNested + kNested + kNested + kNested)).size());
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
