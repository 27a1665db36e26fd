// The archive's reader: the files that it writes, the calls of its callbacks, and the read positions afterwards.

#include "archive/extract_archive.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <stdexcept>

#include "archive/payload_archive.h"
#include "built_archive.h"
#include "windows_facts.h"

namespace kwa {

// The two archives of the process. The tests fill them.
PayloadArchive archiveA = {};
PayloadArchive archiveB = {};

}  // namespace kwa

namespace {

using Files = std::map<std::string, std::string>;
// The arguments of the callbacks.
std::string events;

void NoteFileStart(const kwa::ArchiveEntry* entry, std::uint32_t size) {
  events += std::string(entry->name) + " " + std::to_string(entry->size) + " " + std::to_string(size) + "; ";
}

void NoteProgress(std::uint32_t written) {
  events += std::to_string(written) + "; ";
}

const kwa::ExtractionCallbacks kNoteAll = {NoteFileStart, NoteProgress};

class ExtractArchive : public testing::Test {
 protected:
  // Makes the bytes archive A or B and resets its read position.
  void Install(const std::string& bytes, int index = 0) {
    words[index].resize(bytes.size() / 4);
    std::memcpy(words[index].data(), bytes.data(), bytes.size());
    (index == 0 ? kwa::archiveA : kwa::archiveB) = kwa::PayloadArchive{words[index].data(), 0};
    events.clear();
  }

  kwa::ArchiveResult Extract(std::int32_t index = 0) {
    return kwa::ExtractArchive((folder / "").c_str(), &kNoteAll, index);
  }

  Files Extracted() {
    Files files;
    for (const std::string& name : NamesIn(folder.Path())) {
      files[name] = ReadWholeFile(folder / name);
    }
    return files;
  }

  const TemporaryFolder folder{};
  std::vector<std::uint32_t> words[2];
};

TEST_F(ExtractArchive, WritesBodiesOfEverySizeAndTellsOfEachChunk) {
  // A size of 2^31 or more counts as 0.
  std::vector<ArchiveBody> bodies = {
      {"twice", "longer"}, {"huge", "", 0x80000000}, {"largest", "", 0xFFFFFFFF}, {"twice", "later"}};
  Files files = {{"huge", ""}, {"largest", ""}, {"twice", "later"}};
  for (const std::size_t size : {0, 1, 4095, 4096, 4097, 11519}) {
    std::string body;
    for (std::size_t i = 0; i < size; ++i) {
      body += static_cast<char>((i * 7 + i / 251 + size) & 0xFF);  // zero bytes and line ends among them
    }
    bodies.push_back({std::to_string(size), body});
    files[std::to_string(size)] = body;
  }
  const std::string bytes = BuildArchive(bodies);
  Install(bytes);
  WriteWholeFile(folder / "4096", std::string(10000, 'x'));
  EXPECT_EQ(Extract(), kwa::ArchiveOk);
  EXPECT_EQ(Extracted(), files);
  EXPECT_EQ(events,
            "twice 6 6; 6; huge 2147483648 2147483648; largest 4294967295 4294967295; twice 5 5; 5; 0 0 0; 1 1 1; 1; "
            "4095 4095 4095; 4095; 4096 4096 4096; 4096; 4097 4097 4097; 4096; 4097; 11519 11519 11519; 4096; 8192; "
            "11519; ");
  EXPECT_EQ(kwa::archiveA.position, bytes.size() - 4);
  // Nothing resets the position, so the next word is the terminator.
  EXPECT_EQ(Extract(), kwa::ArchiveCorrupt);
  EXPECT_EQ(kwa::archiveA.position, bytes.size());
}

TEST_F(ExtractArchive, SelectsArchiveAByZeroAndArchiveBByAllElse) {
  for (const std::int32_t index : {0, 1, -1}) {
    Install(BuildArchive({{"file", "of A"}}), 0);
    Install(BuildArchive({{"file", "of B"}}), 1);
    EXPECT_EQ(Extract(index), kwa::ArchiveOk);
    EXPECT_EQ(Extracted(), (Files{{"file", index == 0 ? "of A" : "of B"}})) << index;
    EXPECT_EQ((index == 0 ? kwa::archiveB : kwa::archiveA).position, 0U);
  }
}

TEST_F(ExtractArchive, RefusesAForeignHeader) {
  for (const auto& [bytes, result] :
       std::map<std::string, kwa::ArchiveResult>{{"PAWK" + WordBytes(1), kwa::ArchiveCorrupt},
                                                 {"KWAQ" + WordBytes(1), kwa::ArchiveCorrupt},
                                                 {"KWAP" + WordBytes(0), kwa::ArchiveEmpty}}) {
    Install(bytes + std::string(300, 'x'));
    EXPECT_EQ(Extract(), result);
    EXPECT_EQ(kwa::archiveA.position, result == kwa::ArchiveEmpty ? 8U : 4U);
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>());
  }
}

// The table is refused before a record is read: these archives have only their header.
TEST_F(ExtractArchive, ThrowsWhenTheTableIsTooLong) {
  for (const std::uint32_t count : {16268816U, 0xFFFFFFFFU}) {
    Install("KWAP" + WordBytes(count));
    EXPECT_THROW(Extract(), std::length_error);
    EXPECT_EQ(kwa::archiveA.position, 8U);
  }
}

TEST_F(ExtractArchive, EndsAtAFileThatCannotBeOpened) {
  const auto lock = Lock(folder / "locked");
  for (const std::string name : {"locked", "missing\\second", "sec*nd", ""}) {
    Install(BuildArchive({{"first", "1"}, {name, "2"}, {"third", "3"}}));
    EXPECT_EQ(Extract(), kwa::ArchiveExtractFailed);
    EXPECT_EQ(NamesIn(folder.Path()), (std::vector<std::string>{"first", "locked"}));
    EXPECT_EQ(events, "first 1 1; 1; " + name + " 1 1; ");
    EXPECT_EQ(kwa::archiveA.position, 8 + 3 * sizeof(kwa::ArchiveEntry) + 4);
  }
}

TEST_F(ExtractArchive, CallsOnlyGivenCallbacksAndAddsNothingToTheFolder) {
  const std::pair<kwa::ExtractionCallbacks, std::string> cases[] = {
      {{}, ""}, {{NoteFileStart, nullptr}, "f 1 1; "}, {{nullptr, NoteProgress}, "1; "}};
  for (const auto& [callbacks, expected] : cases) {
    Install(BuildArchive({{"f", "x"}}));
    EXPECT_EQ(kwa::ExtractArchive((folder / "kwa").c_str(), &callbacks, 0), kwa::ArchiveOk);
    EXPECT_EQ(events, expected);
  }
  EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"kwaf"});
}

// The texts keep their spelling, wrong as it is: programs may show or compare them.
TEST(ArchiveResultText, HasATextForEveryCode) {
  const std::vector<std::string> texts(std::begin(kwa::ArchiveResultText), std::end(kwa::ArchiveResultText));
  EXPECT_EQ(texts, (std::vector<std::string>{"ok", "empty archiv, no files found", "error in path",
                                             "could not create archiv file", "corrupt archiv",
                                             "failed to extract a file", "cound not open file"}));
}

}  // namespace
