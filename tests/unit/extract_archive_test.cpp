// The archive's reader: what it writes to disk, what it tells its callbacks, where it leaves the read positions.

#include "archive/extract_archive.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <stdexcept>

#include "installed_archive.h"
#include "test_folder.h"

namespace {

using Bodies = std::vector<ArchiveBody>;
using Files = std::map<std::string, std::string>;

// No two bytes in a row and no two bodies alike, zero bytes and line ends among them.
std::string Body(std::size_t size, unsigned seed = 0) {
  std::string body(size, '\0');
  for (std::size_t i = 0; i < size; ++i) {
    body[i] = static_cast<char>((i * 7 + i / 251 + seed * 31) & 0xFF);
  }
  return body;
}

// What the callbacks were told, one line each.
std::vector<std::string> events;
std::vector<const kwa::ArchiveEntry*> startedEntries;

void NoteFileStart(const kwa::ArchiveEntry* entry, std::uint32_t size) {
  startedEntries.push_back(entry);
  events.push_back("start " + std::string(entry->name) + " " + std::to_string(entry->size) + " " +
                   std::to_string(size));
}

void NoteProgress(std::uint32_t written) {
  events.push_back("progress " + std::to_string(written));
}

const kwa::ExtractionCallbacks kNoteAll = {NoteFileStart, NoteProgress};

class ExtractArchive : public testing::Test {
 protected:
  void SetUp() override {
    kwa::archiveA = kwa::archiveB = {};
    events.clear();
    startedEntries.clear();
  }

  kwa::ArchiveResult Extract(std::int32_t index = 0, const kwa::ExtractionCallbacks* callbacks = &kNoteAll) {
    return kwa::ExtractArchive(folder.Slashed().c_str(), callbacks, index);
  }

  TestFolder folder;
};

TEST_F(ExtractArchive, WritesBodiesOfEverySizeAndTellsOfEachChunk) {
  Files files;
  Bodies bodies;
  for (const std::size_t size : {0, 1, 3, 4, 4095, 4096, 4097, 8192, 11519, 5}) {
    const std::string name = "body" + std::to_string(size);
    files[name] = Body(size, static_cast<unsigned>(bodies.size()));
    bodies.push_back({name, files[name]});
  }
  const InstalledArchive archive(bodies);
  archive.Install(kwa::archiveA);

  EXPECT_EQ(Extract(), kwa::ArchiveOk);
  EXPECT_EQ(FilesIn(folder.Path()), files);
  EXPECT_EQ(kwa::archiveA.position, archive.End());
  EXPECT_EQ(kwa::archiveB.position, 0U);
  // clang-format off
  const std::vector<std::string> expectedEvents = {
      "start body0 0 0",
      "start body1 1 1",             "progress 1",
      "start body3 3 3",             "progress 3",
      "start body4 4 4",             "progress 4",
      "start body4095 4095 4095",    "progress 4095",
      "start body4096 4096 4096",    "progress 4096",
      "start body4097 4097 4097",    "progress 4096", "progress 4097",
      "start body8192 8192 8192",    "progress 4096", "progress 8192",
      "start body11519 11519 11519", "progress 4096", "progress 8192", "progress 11519",
      "start body5 5 5",             "progress 5"};
  // clang-format on
  EXPECT_EQ(events, expectedEvents);
  for (std::size_t i = 0; i < startedEntries.size(); ++i) {
    EXPECT_EQ(startedEntries[i], startedEntries[0] + i) << "entries of one table";
  }
}

TEST_F(ExtractArchive, TakesSizesOf2To31AndMoreForEmptyBodies) {
  const InstalledArchive archive(
      Bodies{{"huge", "", 0x80000000}, {"largest", "", 0xFFFFFFFF}, {"after", "read from here"}});
  archive.Install(kwa::archiveA);
  EXPECT_EQ(Extract(), kwa::ArchiveOk);
  EXPECT_EQ(FilesIn(folder.Path()), (Files{{"huge", ""}, {"largest", ""}, {"after", "read from here"}}));
  EXPECT_EQ(events, (std::vector<std::string>{"start huge 2147483648 2147483648", "start largest 4294967295 4294967295",
                                              "start after 14 14", "progress 14"}));
  EXPECT_EQ(kwa::archiveA.position, archive.End());
}

TEST_F(ExtractArchive, OverwritesAndLetsTheLaterOfTwoNamesWin) {
  WriteWholeFile(folder / "twice", Body(10000));
  const InstalledArchive archive(Bodies{{"twice", "the first and longer one"}, {"between", "b"}, {"twice", "second"}});
  archive.Install(kwa::archiveA);
  EXPECT_EQ(Extract(), kwa::ArchiveOk);
  EXPECT_EQ(FilesIn(folder.Path()), (Files{{"twice", "second"}, {"between", "b"}}));
}

TEST_F(ExtractArchive, SelectsArchiveAByZeroAndArchiveBByAllElse) {
  const InstalledArchive a(Bodies{{"a", "of archive A"}});
  const InstalledArchive b(Bodies{{"b", "of archive B"}});
  for (const std::int32_t index : {0, 1, 2, -1, INT_MIN, INT_MAX}) {
    SCOPED_TRACE(index);
    a.Install(kwa::archiveA);
    b.Install(kwa::archiveB);
    const TestFolder own;
    EXPECT_EQ(kwa::ExtractArchive(own.Slashed().c_str(), nullptr, index), kwa::ArchiveOk);
    EXPECT_EQ(FilesIn(own.Path()), index == 0 ? (Files{{"a", "of archive A"}}) : (Files{{"b", "of archive B"}}));
    EXPECT_EQ(kwa::archiveA.position, index == 0 ? a.End() : 0);
    EXPECT_EQ(kwa::archiveB.position, index == 0 ? 0 : b.End());
  }
}

TEST_F(ExtractArchive, RefusesAForeignHeader) {
  const std::string one = WordBytes(1);
  const struct {
    std::string header;
    kwa::ArchiveResult result;
    std::uint32_t position;
  } cases[] = {
      {"PAWK" + one, kwa::ArchiveCorrupt, 4},         {"kwap" + one, kwa::ArchiveCorrupt, 4},
      {"KWAQ" + one, kwa::ArchiveCorrupt, 4},         {"XWAP" + one, kwa::ArchiveCorrupt, 4},
      {std::string(8, '\0'), kwa::ArchiveCorrupt, 4}, {"KWAP" + WordBytes(0), kwa::ArchiveEmpty, 8},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.header);
    const InstalledArchive archive(expected.header + std::string(300, 'x'));
    archive.Install(kwa::archiveA);
    EXPECT_EQ(Extract(), expected.result);
    EXPECT_EQ(kwa::archiveA.position, expected.position);
    EXPECT_EQ(FilesIn(folder.Path()), Files());
    EXPECT_TRUE(events.empty());
  }
}

// The table is refused before a single record is read: none of these archives has more than its header.
TEST_F(ExtractArchive, ThrowsWhenTheTableIsTooLong) {
  for (const std::uint32_t count : {16268815U, 16268816U, 0x80000000U, 0xFFFFFFFFU}) {
    SCOPED_TRACE(count);
    const InstalledArchive archive("KWAP" + WordBytes(count));
    archive.Install(kwa::archiveA);
    try {
      Extract();
      ADD_FAILURE() << "no exception";
    } catch (const std::length_error&) {
    } catch (const std::bad_alloc&) {
      EXPECT_LE(count, 16268815U) << "a table that 32 bits cannot hold";
    }
    EXPECT_EQ(kwa::archiveA.position, 8U);
    EXPECT_EQ(FilesIn(folder.Path()), Files());
  }
}

// What keeps the second of three files from being opened.
struct OpenFailure {
  const char* what;
  const char* name;
  bool isFolder;
  bool isLocked;
};

class FailingOpen : public ExtractArchive, public testing::WithParamInterface<OpenFailure> {};

TEST_P(FailingOpen, EndsTheExtractionThere) {
  const OpenFailure& failure = GetParam();
  if (failure.isFolder) {
    folder.MakeFolder(failure.name);
  }
  const auto lock = failure.isLocked ? std::make_unique<LockedFile>(folder / failure.name) : nullptr;
  const InstalledArchive a(Bodies{{"first", "of A"}, {failure.name, "KWAQ"}, {"third", "3"}});
  const InstalledArchive b(Bodies{{"other", "of B"}});
  a.Install(kwa::archiveA);
  b.Install(kwa::archiveB);

  EXPECT_EQ(Extract(0), kwa::ArchiveExtractFailed);
  EXPECT_EQ(ReadWholeFile(folder / "first"), "of A");
  EXPECT_FALSE(Exists(folder / "third"));
  EXPECT_EQ(events,
            (std::vector<std::string>{"start first 4 4", "progress 4", "start " + std::string(failure.name) + " 4 4"}));
  const std::uint32_t secondBody = 8 + 3 * sizeof(kwa::ArchiveEntry) + 4;
  EXPECT_EQ(kwa::archiveA.position, secondBody);
  // A second try takes the body for the magic; the other archive does not care.
  EXPECT_EQ(Extract(0), kwa::ArchiveCorrupt);
  EXPECT_EQ(kwa::archiveA.position, secondBody + 4);
  EXPECT_EQ(Extract(1), kwa::ArchiveOk);
  EXPECT_EQ(ReadWholeFile(folder / "other"), "of B");
}

// cppcheck-suppress syntaxError // it does not know an empty argument of a macro
INSTANTIATE_TEST_SUITE_P(, FailingOpen,
                         testing::Values(OpenFailure{"LockedFile", "second", false, true},
                                         OpenFailure{"FolderInItsPlace", "second", true, false},
                                         OpenFailure{"MissingSubfolder", "missing\\second", false, false},
                                         OpenFailure{"RefusedName", "sec*nd", false, false},
                                         OpenFailure{"EmptyName", "", false, false}),
                         [](const auto& test) { return std::string(test.param.what); });

TEST_F(ExtractArchive, FailsInAMissingFolder) {
  const InstalledArchive archive(Bodies{{"file", "x"}});
  archive.Install(kwa::archiveA);
  EXPECT_EQ(kwa::ExtractArchive((folder / "missing\\").c_str(), nullptr, 0), kwa::ArchiveExtractFailed);
  EXPECT_EQ(FilesIn(folder.Path()), Files());
}

TEST_F(ExtractArchive, PutsNothingBetweenFolderAndName) {
  folder.MakeFolder("kwa");
  const InstalledArchive archive(Bodies{{"dpinst.exe", "x"}, {"\\inside", "y"}});
  archive.Install(kwa::archiveA);
  EXPECT_EQ(kwa::ExtractArchive((folder / "kwa").c_str(), nullptr, 0), kwa::ArchiveOk);
  EXPECT_EQ(FilesIn(folder.Path()), (Files{{"kwa\\", ""}, {"kwadpinst.exe", "x"}}));
  EXPECT_EQ(FilesIn(folder / "kwa"), (Files{{"inside", "y"}}));
}

TEST_F(ExtractArchive, WorksOncePerArchive) {
  const InstalledArchive archive(Bodies{{"file", Body(4097)}});
  archive.Install(kwa::archiveA);
  EXPECT_EQ(Extract(), kwa::ArchiveOk);
  WriteWholeFile(folder / "file", "changed since");
  events.clear();
  EXPECT_EQ(Extract(), kwa::ArchiveCorrupt);
  EXPECT_EQ(FilesIn(folder.Path()), (Files{{"file", "changed since"}}));
  EXPECT_EQ(kwa::archiveA.position, archive.End() + 4);
  EXPECT_TRUE(events.empty());
}

TEST_F(ExtractArchive, CallsOnlyTheCallbacksThereAre) {
  const kwa::ExtractionCallbacks onlyStart = {NoteFileStart, nullptr};
  const kwa::ExtractionCallbacks onlyProgress = {nullptr, NoteProgress};
  const kwa::ExtractionCallbacks none = {};
  const struct {
    const kwa::ExtractionCallbacks* callbacks;
    std::vector<std::string> events;
  } cases[] = {{nullptr, {}}, {&none, {}}, {&onlyStart, {"start f 1 1"}}, {&onlyProgress, {"progress 1"}}};
  const InstalledArchive archive(Bodies{{"f", "x"}});
  for (const auto& expected : cases) {
    archive.Install(kwa::archiveA);
    events.clear();
    EXPECT_EQ(Extract(0, expected.callbacks), kwa::ArchiveOk);
    EXPECT_EQ(events, expected.events);
    EXPECT_EQ(FilesIn(folder.Path()), (Files{{"f", "x"}}));
  }
}

// Tools show these texts; their spelling is what their readers know.
TEST(ArchiveResultText, HasAWordForEveryCode) {
  EXPECT_STREQ(kwa::ArchiveResultText[kwa::ArchiveOk], "ok");
  EXPECT_STREQ(kwa::ArchiveResultText[kwa::ArchiveEmpty], "empty archiv, no files found");
  EXPECT_STREQ(kwa::ArchiveResultText[kwa::ArchivePathError], "error in path");
  EXPECT_STREQ(kwa::ArchiveResultText[kwa::ArchiveCreateFailed], "could not create archiv file");
  EXPECT_STREQ(kwa::ArchiveResultText[kwa::ArchiveCorrupt], "corrupt archiv");
  EXPECT_STREQ(kwa::ArchiveResultText[kwa::ArchiveExtractFailed], "failed to extract a file");
  EXPECT_STREQ(kwa::ArchiveResultText[kwa::ArchiveOpenFailed], "cound not open file");
}

}  // namespace
