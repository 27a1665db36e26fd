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
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string output;
  } cases[] = {
      {{"preview", KWA_INSTALLER}, 0, expected},
      {{"preview", "--windows", "xp", KWA_INSTALLER}, 0, legacy},
      {{"preview", KWA_INSTALLER, "--windows", "95"}, 2, ""},
      {{"preview"}, 2, ""},
  };
  for (const auto& test : cases) {
    const ToolRun run = RunTool(test.arguments);
    EXPECT_EQ(run.status, test.status) << run.errors;
    EXPECT_EQ(run.output, test.output);
    EXPECT_EQ(run.errors.empty(), test.status == 0) << run.errors;
  }
}

}  // namespace
