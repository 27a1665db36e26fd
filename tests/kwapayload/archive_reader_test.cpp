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
    {"nested.bin", kNested + kNested},
    {"zero", ""},
    {"last.exe", "12345" + kNested.substr(0, 300) + std::string(600, 'e')},
};
const std::vector<ArchiveBody> kBodiesB = {
    {"dpinst.exe", "12345678"},
    {"kwa.bmp", std::string(6001, 'b')},
    {"nested.b", kNested},
};

// Data of a program: the magic as a constant, and one before a field with a name.
const std::string kBefore = "KWAP" + std::string(8, '\0') + "KWAPKWAP" + WordBytes(1) + "C:\\file" +
                            std::string(253, '\0') + WordBytes(7000) + std::string(32, '\0');
const std::string kBetween = "more";
const std::string kAfter = std::string(12, '\0') + "KWAP" + std::string(20, 'z');

struct Area {
  std::string bytes;
  std::size_t a;  // offset of archive A
  std::size_t b;
};

Area BuildArea() {
  const std::string before = kBefore + BuildArchive(kBodiesA) + kBetween;
  return {before + BuildArchive(kBodiesB) + kAfter, kBefore.size(), before.size()};
}

std::size_t Record(std::size_t archive, std::size_t index) {
  return archive + 8 + index * 264;
}

// What was found: each archive with its items and findings.
std::string Shown(const std::vector<kwa::ParsedArchive>& archives, const Area& area) {
  std::string text;
  for (const kwa::ParsedArchive& archive : archives) {
    const bool isA = archive.offset == area.a;
    text += (isA                        ? "A"
             : archive.offset == area.b ? "B"
                                        : "at " + std::to_string(archive.offset)) +
            " " + std::to_string(archive.items.size()) + "\n";
    for (const kwa::Finding& finding : archive.findings) {
      text += (finding.severity == kwa::Severity::Error ? "  error " : "  warning ") + finding.where +
              (finding.where.empty() ? "" : ": ") + finding.what + "\n";
    }
  }
  return text;
}

struct DamageCase {
  const char* what;
  std::function<void(Area&)> damage;
  std::string found;
};

std::ostream& operator<<(std::ostream& stream, const DamageCase& damageCase) {
  return stream << damageCase.what;
}

void PutText(Area& area, std::size_t offset, const std::string& text) {
  area.bytes.replace(offset, text.size(), text);
}

const DamageCase kCases[] = {
    {"Nothing", [](Area&) {}, "A 5\nB 3\n"},
    {"MagicOfA", [](Area& area) { PutText(area, area.a, "kWAP"); },
     "A 5\n  error begins with \"kWAP\" instead of \"KWAP\"\nB 3\n"},
    {"MagicOfB", [](Area& area) { PutText(area, area.b + 3, "\x01"); },
     "A 5\nB 3\n  error begins with \"KWA\\x01\" instead of \"KWAP\"\n"},
    {"CountZero", [](Area& area) { PutWord(area.bytes, area.a + 4, 0); },
     "A 5\n  error says that it has 0 entries, but has 5\nB 3\n"},
    {"CountOneLess", [](Area& area) { PutWord(area.bytes, area.a + 4, 4); },
     "A 5\n  error says that it has 4 entries, but has 5\nB 3\n"},
    {"CountHuge", [](Area& area) { PutWord(area.bytes, area.b + 4, 0xFFFFFFFF); },
     "A 5\nB 3\n  error says that it has 4294967295 entries, but has 3\n"},
    {"NameNotEnded", [](Area& area) { PutText(area, Record(area.a, 1), std::string(260, 'n')); },
     "A 5\n  error " + std::string(260, 'n') + ": the name is not ended within its 260 bytes\nB 3\n"},
    {"NameNotZeroFilled", [](Area& area) { PutText(area, Record(area.a, 4) + 259, "x"); },
     "A 5\n  warning last.exe: the bytes behind the name's end are not zero\nB 3\n"},
    {"NameHasControl", [](Area& area) { PutText(area, Record(area.b, 0), "\n"); }, "A 5\nB 3\n"},
    {"SizeNegative", [](Area& area) { PutWord(area.bytes, Record(area.a, 2) + 260, 0x80000000); },
     "A 5\n  error nested.bin: has 2147483648 bytes; the installer reads bodies below 2147483648\nB 3\n"},
    {"SizeOfLastNegative", [](Area& area) { PutWord(area.bytes, Record(area.b, 2) + 260, 0xFFFFFFFF); },
     "A 5\nB 3\n  error nested.b: has 4294967295 bytes; the installer reads bodies below 2147483648\n"},
    {"SizeOneWordMore", [](Area& area) { PutWord(area.bytes, Record(area.a, 0) + 260, 15); },
     "A 5\n  error the sizes do not add up: no zero word follows the last body\nB 3\n"},
    {"ClosingWordOfA", [](Area& area) { PutText(area, area.b - 8, "x"); },
     "A 5\n  warning no zero word follows the last body\nB 3\n"},
    {"CutOffInB", [](Area& area) { area.bytes.resize(area.bytes.size() - kAfter.size() - 100); },
     "A 5\nB 3\n  error nested.b: its body of " + std::to_string(kNested.size()) +
         " bytes runs past the end of the data\n"},
    {"CutOffInA", [](Area& area) { area.bytes.resize(area.a + 8 + 5 * 264 + 20); },
     "A 5\n  error driver.sys: its body of 1018 bytes runs past the end of the data\n"},
    {"CutOffInTheTable", [](Area& area) { area.bytes.resize(area.a + 8 + 3 * 264); }, ""},
    {"NotOnAWord", [](Area& area) { area.bytes.insert(0, 2, '\0'); }, ""},
    {"AThird",
     [](Area& area) {
       area.bytes += BuildArchive({{"x", "y"}});
     },
     "A 5\nB 3\nat " + std::to_string(BuildArea().bytes.size()) + " 1\n"},
};

class FindArchives : public testing::TestWithParam<DamageCase> {};

TEST_P(FindArchives, Describes) {
  Area area = BuildArea();
  GetParam().damage(area);
  EXPECT_EQ(GetParam().found, Shown(kwa::FindArchives(kwa::ByteSpan(area.bytes)), area));
}

INSTANTIATE_TEST_SUITE_P(Damage, FindArchives, testing::ValuesIn(kCases),
                         [](const auto& testInfo) { return std::string(testInfo.param.what); });

TEST(ReadArchive, ItemsAsTheyStand) {
  const Area area = BuildArea();
  const auto archives = kwa::FindArchives(kwa::ByteSpan(area.bytes));
  ASSERT_EQ(2U, archives.size());
  std::uint64_t position = 8 + 5 * 264;
  for (std::size_t i = 0; i < kBodiesA.size(); ++i) {
    ASSERT_LT(i, archives[0].items.size());
    const kwa::ArchiveItem& item = archives[0].items[i];
    EXPECT_EQ(kBodiesA[i].name, item.name);
    EXPECT_EQ(kBodiesA[i].bytes.size(), item.size);
    EXPECT_EQ(position, item.position);
    EXPECT_EQ(kBodiesA[i].bytes, item.body.Text());
    position += (item.size + 3) / 4 * 4;
  }
  EXPECT_EQ(position, archives[0].size);
  EXPECT_TRUE(archives[0].IsReadable());
}

// A file that is an archive is described however little of it is right.
TEST(ReadArchive, SingleArchives) {
  const std::string whole = BuildArchive({{"a", "12345"}});
  const std::pair<std::string, std::string> kFiles[] = {
      {whole, ""},
      {whole.substr(0, 260), "ends within its table of 1 entries"},
      {whole.substr(0, 276), "its body of 5 bytes runs past the end of the data"},
      {whole.substr(0, 280), "no zero word follows the last body"},
      {"KWAP", "has no entries"},
      {"KWAP" + std::string(300, '\0'), "has no entries"},
      {"KWAP" + std::string(300, '\xFF'), "ends within its table of 4294967295 entries"},
      {"KWAP" + WordBytes(1) + std::string(300, '\0'), "an entry has no name"},
      {"PAWK" + std::string(300, '\0'), "does not begin with \"KWAP\""},
      {"", "does not begin with \"KWAP\""},
  };
  for (const auto& [bytes, what] : kFiles) {
    const kwa::ParsedArchive archive = kwa::ReadArchiveAt(kwa::ByteSpan(bytes));
    EXPECT_EQ(what, archive.findings.empty() ? "" : archive.findings.front().what);
    EXPECT_LE(archive.findings.size(), 1U);
  }
}

}  // namespace
