// The sample payload: files of the listed sizes alone, and none touched that is right already. What they hold is
// checked by kwapayload verify, at the end of the sample's build.

#include "sample_payload.h"

#include <gtest/gtest.h>

#include "base/tool_failure.h"
#include "built_image.h"
#include "payload/payload_contents.h"
#include "temporary_folder.h"

namespace {

namespace fs = std::filesystem;

TEST(SamplePayload, HoldsTheListedFilesAlone) {
  const TemporaryFolder folder;
  BuiltImage program;
  program.directories.resize(16);
  for (const char* name : {"settings.exe", "driver.sys", "asio.dll", "mixer.exe", "standin.exe"}) {
    WriteWholeFile(folder / (std::string("programs/") + name), BuildImage(program));
  }
  const auto make = [&folder](const std::string& contents) {
    kwa::MakeSamplePayload({contents, KWA_SAMPLE_FILES, folder / "programs", folder / "programs"}, folder / "out");
  };
  for (const auto& [name, fault] : std::map<std::string, std::string>{
           {"unheard.of", "the sample payload has no such file"},
           {"marlinusb.exe", "the list of contents asks for 5 bytes, its content needs 376"}}) {
    WriteWholeFile(folder / "list.json",
                   R"({"files": [{"archive": "B", "order": 1, "kind": "text", "size": 5, "name": ")" + name + "\"}]}");
    try {
      make(folder / "list.json");
      ADD_FAILURE() << name;
    } catch (const kwa::ToolFailure& failure) {
      EXPECT_EQ(name + ": " + fault, failure.what());
    }
    EXPECT_FALSE(fs::exists(folder / "out")) << "something was written for " << name;
  }

  make(KWA_CONTENTS);
  const std::string catalog = ReadWholeFile(folder / "out/a/marlin_usb.cat");
  WriteWholeFile(folder / "out/a/marlin_usb.cat", std::string(catalog.size(), 'x'));
  WriteWholeFile(folder / "out/a/stray.txt", "stray");
  const fs::file_time_type past = fs::last_write_time(folder / "out/b/dpinst.exe") - std::chrono::hours(1);
  fs::last_write_time(folder / "out/b/dpinst.exe", past);
  make(KWA_CONTENTS);
  const kwa::PayloadContents contents = kwa::ReadPayloadContents(KWA_CONTENTS);
  for (const kwa::ContentsFile& file : contents) {
    EXPECT_EQ(file.size, fs::file_size(folder / ((file.archive == 'A' ? "out/a/" : "out/b/") + file.name)));
  }
  EXPECT_EQ(contents.size(), NamesIn(folder / "out/a").size() + NamesIn(folder / "out/b").size());
  EXPECT_EQ(past, fs::last_write_time(folder / "out/b/dpinst.exe"));
  EXPECT_EQ(catalog, ReadWholeFile(folder / "out/a/marlin_usb.cat"));
}

}  // namespace
