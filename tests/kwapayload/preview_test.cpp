// The preview against the expected configuration; the Windows tests hold the installer's own writer to the same file,
// and to the preview for many INFs.
#include <gtest/gtest.h>

#include "temporary_folder.h"
#include "tool_run.h"

namespace {

TEST(Preview, IsTheExpectedConfiguration) {
  const std::string expected = ReadWholeFile(KWA_EXPECTED_DOCUMENT);
  std::string legacy = expected;
  const std::string flag = "  <forceIfDriverIsNotBetter/>\r\n";
  legacy.insert(legacy.find(flag) + flag.size(), "  <legacyMode/>\r\n");

  const TemporaryFolder folder;
  const std::string text = folder / "text.txt";
  WriteWholeFile(text, "no installer");
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string output;
  } cases[] = {
      {{"preview", KWA_INSTALLER}, 0, expected},
      {{"preview", KWA_INSTALLER, "--windows", "vista"}, 0, expected},
      {{"preview", "--windows", "xp", KWA_INSTALLER}, 0, legacy},
      {{"preview", KWA_INSTALLER, "--windows", "95"}, 2, ""},
      {{"preview", text}, 1, ""},
  };
  for (const auto& test : cases) {
    const ToolRun run = RunTool(test.arguments);
    EXPECT_EQ(run.status, test.status) << run.errors;
    EXPECT_EQ(run.output, test.output);
    EXPECT_EQ(run.errors.empty(), test.status == 0) << run.errors;
  }
}

}  // namespace
