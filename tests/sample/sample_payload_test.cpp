// The sample payload: files of the listed sizes and of the right kinds, and no file touched that is right already.

#include "sample_payload.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "base/tool_failure.h"
#include "catalog.h"
#include "help_file.h"
#include "inf_text.h"
#include "licence_texts.h"
#include "payload/payload_contents.h"
#include "temporary_folder.h"
#include "watermark.h"

namespace {

namespace fs = std::filesystem;

// Whether every line end is CR LF, the last line's as well.
bool HasWholeLines(const std::string& text) {
  bool isWhole = text.size() > 1 && text.compare(text.size() - 2, 2, "\r\n") == 0;
  for (std::size_t at = text.find_first_of("\r\n"); isWhole && at != std::string::npos;
       at = text.find_first_of("\r\n", at + 2)) {
    isWhole = text.compare(at, 2, "\r\n") == 0;
  }
  return isWhole;
}

TEST(SampleFiles, HaveAnySizeThatIsLargeEnough) {
  for (const std::size_t more : {0, 1, 2, 79, 200, 255, 256, 257, 511, 3000, 20001}) {
    EXPECT_EQ(40000 + more, kwa::MakeInf(40000 + more).size());
    EXPECT_EQ(700 + more, kwa::MakeCatalog(700 + more).size());
    EXPECT_EQ(6000 + more, kwa::MakeHelpFile(6000 + more).size());
    const std::string licence = kwa::MakeLicenceText(kwa::LicenceLanguage::kGerman, 4851 + more);
    EXPECT_EQ(4851 + more, licence.size());
    EXPECT_TRUE(HasWholeLines(licence) || more == 1) << more;  // one byte has no room for a line end
  }
  EXPECT_THROW(kwa::MakeInf(1000), std::runtime_error);
  EXPECT_THROW(kwa::MakeCatalog(699), std::runtime_error);
  EXPECT_THROW(kwa::MakeCatalog(65536), std::runtime_error);
  EXPECT_THROW(kwa::MakeHelpFile(4299), std::runtime_error);
  EXPECT_THROW(kwa::MakeLicenceText(kwa::LicenceLanguage::kEnglish, 4001), std::runtime_error);
  EXPECT_THROW(kwa::MakeWatermark(47635), std::runtime_error);
}

// A folder with stand-ins for the built programs: what matters is which of them ends up where.
class SamplePayload : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* machine : {"x86", "x64"}) {
      for (const char* name : {"settings.exe", "driver.sys", "asio.dll", "mixer.exe", "standin.exe"}) {
        WriteWholeFile(folder / (std::string(machine) + "/" + name), std::string(machine) + name);
      }
    }
  }

  std::string File(const std::string& name) { return ReadWholeFile(folder / ("out/" + name)); }
  void Make(const std::string& contents) {
    kwa::MakeSamplePayload({contents, folder / "x86", folder / "x64"}, folder / "out");
  }

  const TemporaryFolder folder;
};

TEST_F(SamplePayload, HoldsTheListedFilesOfTheirSizesAlone) {
  WriteWholeFile(folder / "out/a/stray.txt", "stray");
  Make(KWA_CONTENTS);
  std::map<std::string, std::set<std::string>> expected;
  for (const kwa::ContentsFile& file : kwa::ReadPayloadContents(KWA_CONTENTS)) {
    const std::string archive = file.archive == 'A' ? "a" : "b";
    EXPECT_EQ(file.size, fs::file_size(folder / ("out/" + archive + "/" + file.name))) << file.name;
    expected[archive].insert(file.name);
  }
  for (const auto& [archive, names] : expected) {
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.end()), NamesIn(folder / ("out/" + archive)));
  }
  const std::map<std::string, std::string> programs = {
      {"a/marlinusb.exe", "x86settings.exe"},      {"a/marlin_usb.sys", "x86driver.sys"},
      {"a/marlin_usb_64.sys", "x64driver.sys"},    {"a/marlin_usb_asio.dll", "x86asio.dll"},
      {"a/marlin_usb_asio_64.dll", "x64asio.dll"}, {"a/Panorama.exe", "x86mixer.exe"},
      {"b/dpinst.exe", "x86standin.exe"},          {"b/dpinst64.exe", "x64standin.exe"}};
  for (const auto& [file, program] : programs) {
    const std::string start = File(file).substr(0, 4096);
    EXPECT_EQ(program, start.substr(0, program.size())) << file;
    EXPECT_GT(std::set<char>(start.begin(), start.end()).size(), 200U) << "the padding of " << file;
  }
}

TEST_F(SamplePayload, LeavesRightFilesAloneAndMendsWrongOnes) {
  Make(KWA_CONTENTS);
  const fs::file_time_type past = fs::last_write_time(folder / "out/b/kwa.bmp") - std::chrono::hours(1);
  const std::string german = File("b/eula_de.txt");
  std::string wrong = german;
  wrong[100] ^= 1;
  WriteWholeFile(folder / "out/b/eula_de.txt", wrong);
  for (const char* name : {"b/kwa.bmp", "b/eula_de.txt"})
    fs::last_write_time(folder / (std::string("out/") + name), past);
  Make(KWA_CONTENTS);
  EXPECT_EQ(past, fs::last_write_time(folder / "out/b/kwa.bmp"));
  EXPECT_NE(past, fs::last_write_time(folder / "out/b/eula_de.txt"));
  EXPECT_EQ(german, File("b/eula_de.txt"));
}

TEST_F(SamplePayload, NamesTheFileThatItCannotMake) {
  struct Case {
    const char* name;
    int size;
    const char* line;
  };
  const Case cases[] = {
      {"unheard.of", 5, "unheard.of: the sample payload has no such file"},
      {"dpinst.exe", 5, "dpinst.exe: the list of contents asks for 5 bytes, its content needs 14"},
      {"kwa.bmp", 5, "kwa.bmp: the list of contents asks for 5 bytes, this bitmap has 47634"},
  };
  for (const Case& wanted : cases) {
    WriteWholeFile(folder / "list.json", std::string(R"({"files": [{"archive": "B", "order": 1, "name": ")") +
                                             wanted.name + R"(", "kind": "text", "size": )" +
                                             std::to_string(wanted.size) + "}]}");
    try {
      Make(folder / "list.json");
      ADD_FAILURE() << wanted.name;
    } catch (const kwa::ToolFailure& failure) {
      EXPECT_STREQ(wanted.line, failure.what());
    }
    EXPECT_FALSE(fs::exists(folder / "out")) << "something was written for " << wanted.name;
  }
}

}  // namespace
