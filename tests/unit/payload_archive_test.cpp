// The read primitives: what they copy, and how far they move.

#include "archive/payload_archive.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "installed_archive.h"

namespace {

TEST(ReadArchiveBytes, ReadsWholeWords) {
  const InstalledArchive archive("abcdefghijklmnop");
  const struct {
    std::uint32_t byteCount;
    std::string destination;
  } cases[] = {
      {0, "............"}, {1, "abcd........"}, {4, "abcd........"}, {5, "abcdefgh...."}, {12, "abcdefghijkl"}};
  for (const auto& expected : cases) {
    archive.Install(kwa::archiveB);
    std::string destination(12, '.');
    kwa::ReadArchiveBytes(destination.data(), expected.byteCount, 1);
    EXPECT_EQ(destination, expected.destination) << expected.byteCount;
    EXPECT_EQ(kwa::archiveB.position, 12 - std::count(destination.begin(), destination.end(), '.'));
  }
}

TEST(ReadArchiveRecords, ReadsThemBackToBack) {
  const InstalledArchive archive("abcdefghijklmnop");
  archive.Install(kwa::archiveA);
  std::string destination(16, '.');
  kwa::ReadArchiveRecords(destination.data(), 4, 0, 0);
  EXPECT_EQ(kwa::archiveA.position, 0U);
  kwa::ReadArchiveRecords(destination.data(), 4, 3, 0);
  EXPECT_EQ(destination, "abcdefghijkl....");
  EXPECT_EQ(kwa::archiveA.position, 12U);
}

}  // namespace
