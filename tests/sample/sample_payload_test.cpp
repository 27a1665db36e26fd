// The sample payload: files of the listed sizes alone, and none touched that is right already. What they hold is
// checked by kwapayload verify, at the end of the sample's build.

#include "sample_payload.h"

#include <gtest/gtest.h>

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
  const auto make = [&folder] {
    kwa::MakeSamplePayload({KWA_CONTENTS, KWA_SAMPLE_FILES, folder / "programs", folder / "programs"}, folder / "out");
  };
  make();
  const std::string catalog = ReadWholeFile(folder / "out/a/marlin_usb.cat");
  WriteWholeFile(folder / "out/a/marlin_usb.cat", std::string(catalog.size(), 'x'));
  WriteWholeFile(folder / "out/a/stray.txt", "stray");
  const fs::file_time_type past = fs::last_write_time(folder / "out/b/dpinst.exe") - std::chrono::hours(1);
  fs::last_write_time(folder / "out/b/dpinst.exe", past);
  make();
  const kwa::PayloadContents contents = kwa::ReadPayloadContents(KWA_CONTENTS);
  for (const kwa::ContentsFile& file : contents) {
    EXPECT_EQ(file.size, fs::file_size(folder / ((file.archive == 'A' ? "out/a/" : "out/b/") + file.name)));
  }
  EXPECT_EQ(contents.size(), NamesIn(folder / "out/a").size() + NamesIn(folder / "out/b").size());
  EXPECT_EQ(past, fs::last_write_time(folder / "out/b/dpinst.exe"));
  EXPECT_EQ(catalog, ReadWholeFile(folder / "out/a/marlin_usb.cat"));
}

}  // namespace
