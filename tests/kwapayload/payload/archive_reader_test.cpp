// Archives among the data of a program, sound and damaged. The codes of all damages are in the table of verify.

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
// Before them is data of a program: the magic as a constant, and the magic before a field with a name.
const std::string kBefore = "KWAPKWAP" + WordBytes(1) + "C:\\file" + std::string(253, '\0') + WordBytes(9000);
const std::string kBeforeB = kBefore + BuildArchive(kBodiesA) + "more";
const std::string kArea =
    kBeforeB + BuildArchive({{"dpinst.exe", "12345678"}, {"kwa.bmp", "bbb"}, {"last", "1"}}) + std::string(300, 'z');

// The sound archives with the sizes of their bodies, and the broken ones with what is wrong.
std::string Shown(const std::string& area) {
  std::string text;
  for (const kwa::ParsedArchive& archive : kwa::FindArchives(kwa::ByteSpan(area))) {
    text += std::to_string(archive.offset) + ":";
    for (const kwa::ArchiveItem& item : archive.items) {
      EXPECT_EQ(item.body.Text(), area.substr(item.fileOffset, item.body.Size()));
      EXPECT_EQ(item.fileOffset, archive.offset + item.position);
      text += " " + std::to_string(item.body.Size());
    }
    text += "\n";
  }
  for (const kwa::BrokenArchive& broken : kwa::FindBrokenArchives(kwa::ByteSpan(area))) {
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
      {4, WordBytes(4), "name-not-zero-filled: "},
      {record(1) - 4, WordBytes(0x80000000), "size-too-large: dpinst.exe"},
      {record(3) - 4, WordBytes(999), "body-past-end: last"},
  };
  for (const auto& damage : kDamages) {
    std::string area = kArea;
    area.replace(kBeforeB.size() + damage.at, damage.bytes.size(), damage.bytes);
    const std::string fault = std::to_string(kBeforeB.size()) + " " + damage.fault + "\n";
    EXPECT_EQ(foundA + lookalike + (damage.fault.empty() ? "" : fault), Shown(area));
  }
  // Three show that there are too many.
  EXPECT_EQ(3U, kwa::FindArchives(kwa::ByteSpan(kNested + kNested + kNested + kNested)).size());
  std::string many;
  for (int i = 0; i < 20; ++i) {
    many += kNested.substr(0, 272);
  }
  EXPECT_EQ(16U, kwa::FindBrokenArchives(kwa::ByteSpan(many)).size());
}

}  // namespace
