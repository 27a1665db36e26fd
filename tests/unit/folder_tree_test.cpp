// Deleting the work folder through the real shell.

#include "app/folder_tree.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "test_folder.h"

namespace {

// As the installer does: a path in a buffer whose other bytes are zero.
int Delete(const std::string& path) {
  char buffer[260] = {};
  path.copy(buffer, sizeof buffer - 2);
  return kwa::DeleteFolderTree(buffer);
}

TEST(DeleteFolderTree, DeletesEverythingWithoutAsking) {
  const TestFolder folder;
  folder.MakeFolder("kwa\\deep\\deeper");
  folder.MakeFolder("kwa\\empty");
  folder.MakeFolder("kwab");
  for (const char* name : {"kwa\\file", "kwa\\deep\\deeper\\program.exe", "kwa\\read only", "kwa\\hidden", "kwa.txt"}) {
    WriteWholeFile(folder / name, "x");
  }
  SetFileAttributesA((folder / "kwa\\read only").c_str(), FILE_ATTRIBUTE_READONLY);
  SetFileAttributesA((folder / "kwa\\hidden").c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  EXPECT_EQ(Delete(folder / "kwa"), 1);
  EXPECT_EQ(NamesIn(folder.Path()), (std::vector<std::string>{"kwa.txt", "kwab"}));
}

TEST(DeleteFolderTree, TellsThatThereIsNoSuchFolder) {
  const TestFolder folder;
  EXPECT_EQ(Delete(folder / "kwa"), 0);
}

// Why callers must see to a second zero byte.
TEST(DeleteFolderTree, TakesAListOfPaths) {
  const TestFolder folder;
  folder.MakeFolder("one");
  folder.MakeFolder("two");
  folder.MakeFolder("three");
  EXPECT_EQ(Delete(folder / "one" + '\0' + (folder / "two")), 1);
  EXPECT_EQ(NamesIn(folder.Path()), (std::vector<std::string>{"three"}));
}

}  // namespace
