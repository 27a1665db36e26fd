// list and extract on the installer that the build made, against the payload that went into it.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "temporary_folder.h"
#include "tool_run.h"

namespace {

using nlohmann::json;

json ReadContents() {
  return json::parse(ReadWholeFile(KWA_CONTENTS))["files"];
}

TEST(BuiltInstaller, ListGivesTheContents) {
  const ToolRun run = RunTool({"list", "--json", KWA_INSTALLER});
  ASSERT_EQ(0, run.status) << run.errors;
  const std::string installer = ReadWholeFile(KWA_INSTALLER);
  json listed = json::parse(run.output)["files"];
  std::string archive;
  std::uint64_t end = 0;  // where a body ends, and its padding
  for (auto& file : listed) {
    if (file["archive"] != archive) {
      archive = file["archive"];
    } else {
      EXPECT_EQ(end, file["position"]);
    }
    end = (file["position"].get<std::uint64_t>() + file["size"].get<std::uint64_t>() + 3) / 4 * 4;
    const std::string folder = archive == "A" ? "/a/" : "/b/";
    EXPECT_TRUE(ReadWholeFile(KWA_PAYLOAD_DIR + folder + file["name"].get<std::string>()) ==
                installer.substr(file["fileOffset"], file["size"]))
        << file;
    file.erase("position");
    file.erase("fileOffset");
    EXPECT_EQ(64U, file["sha256"].get<std::string>().size());
    file.erase("sha256");
  }
  EXPECT_EQ(ReadContents(), listed);
}

TEST(BuiltInstaller, ExtractGivesThePayload) {
  const TemporaryFolder folder;
  const ToolRun run = RunTool({"extract", KWA_INSTALLER, folder / "out"});
  ASSERT_EQ(0, run.status) << run.errors;
  std::vector<std::string> names;
  for (const char* const archive : {"a", "b"}) {
    const std::filesystem::path payload = std::filesystem::path(KWA_PAYLOAD_DIR) / archive;
    for (const std::string& name : NamesIn(payload)) {
      EXPECT_TRUE(ReadWholeFile(payload / name) == ReadWholeFile(folder / ("out/" + name))) << name;
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, NamesIn(folder / "out"));
}

}  // namespace
