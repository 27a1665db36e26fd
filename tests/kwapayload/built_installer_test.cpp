// The installer that the build made: extract gives the payload that went into it, preview the expected configuration.
// The Windows tests hold the installer's own writer to the same file, and to the preview for many INFs.

#include <gtest/gtest.h>

#include <algorithm>

#include "temporary_folder.h"
#include "tool_run.h"

namespace {

TEST(BuiltInstaller, ExtractGivesThePayload) {
  const TemporaryFolder folder;
  const ToolRun run = RunTool({"extract", KWA_INSTALLER, folder / "out"});
  ASSERT_EQ(0, run.status) << run.errors;
  std::size_t count = 0;
  for (const char* const archive : {"a", "b"}) {
    const std::filesystem::path payload = std::filesystem::path(KWA_PAYLOAD_DIR) / archive;
    for (const std::string& name : NamesIn(payload)) {
      EXPECT_TRUE(ReadWholeFile(payload / name) == ReadWholeFile(folder / ("out/" + name))) << name;
      ++count;
    }
  }
  EXPECT_EQ(count, NamesIn(folder / "out").size());
}

TEST(BuiltInstaller, PreviewIsTheExpectedConfiguration) {
  const std::string expected = ReadWholeFile(KWA_EXPECTED_DOCUMENT);
  std::string legacy = expected;
  const std::string flag = "  <forceIfDriverIsNotBetter/>\r\n";
  legacy.insert(legacy.find(flag) + flag.size(), "  <legacyMode/>\r\n");
  const std::pair<std::vector<std::string>, std::string> kRuns[] = {
      {{"preview", KWA_INSTALLER}, expected}, {{"preview", "--windows", "xp", KWA_INSTALLER}, legacy}};
  for (const auto& [arguments, document] : kRuns) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, document);
  }
}

}  // namespace
