// The sample payload: files of the listed sizes and of the right kinds, and no file touched that is right already.

#include "sample_payload.h"

#include <gtest/gtest.h>
#include <openssl/objects.h>
#include <openssl/pkcs7.h>

#include <map>
#include <memory>
#include <set>
#include <sstream>

#include "catalog.h"
#include "help_file.h"
#include "inf_text.h"
#include "licence_texts.h"
#include "payload_contents.h"
#include "temporary_folder.h"
#include "tool_failure.h"
#include "watermark.h"

namespace {

namespace fs = std::filesystem;

const char kCrLf[] = "\r\n";

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find(kCrLf, start);
    EXPECT_NE(std::string::npos, end) << "the last line has no end";
    lines.push_back(text.substr(start, end - start));
    EXPECT_EQ(std::string::npos, lines.back().find_first_of(kCrLf)) << "a line end other than CR LF";
    start = end == std::string::npos ? text.size() : end + 2;
  }
  return lines;
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

// The lines of an INF's section.
std::vector<std::string> SectionOf(const std::string& inf, const std::string& name) {
  std::vector<std::string> lines;
  bool inside = false;
  for (const std::string& line : LinesOf(inf)) {
    if (line.rfind('[', 0) == 0) {
      inside = line == "[" + name + "]";
    } else if (inside && !line.empty()) {
      lines.push_back(line);
    }
  }
  return lines;
}

// Little-endian number at that offset.
unsigned NumberAt(const std::string& bytes, std::size_t offset, int byteCount) {
  unsigned number = 0;
  for (int i = byteCount - 1; i >= 0; --i) {
    number = number << 8 | static_cast<unsigned char>(bytes.at(offset + static_cast<std::size_t>(i)));
  }
  return number;
}

TEST(SampleInf, NamesThePackageAndItsFiles) {
  const std::string inf = kwa::MakeInf(344555);
  EXPECT_EQ((std::vector<std::string>{"Signature = \"$WINDOWS NT$\"", "Class = MEDIA",
                                      "ClassGUID = {4d36e96c-e325-11ce-bfc1-08002be10318}", "Provider = \"KWA\"",
                                      "DriverVer = 02/13/2014,1.0.42.0", "DriverPackageDisplayName = \"Marlin USB\"",
                                      "CatalogFile = marlin_usb.cat"}),
            SectionOf(inf, "Version"));
  EXPECT_EQ((std::vector<std::string>{"marlin_usb.inf = 1", "marlinusb.exe = 1", "marlin_usb.sys = 1",
                                      "marlin_usb_64.sys = 1", "marlin_usb_asio.dll = 1", "marlin_usb_asio_64.dll = 1",
                                      "Panorama.chm = 1", "Panorama.exe = 1"}),
            SectionOf(inf, "SourceDisksFiles"));
}

// A section or string that an INF names and does not have makes Windows refuse it.
TEST(SampleInf, HasWhatItRefersTo) {
  const std::string inf = kwa::MakeInf(40000);
  for (const char c : inf) {
    ASSERT_TRUE((c >= ' ' && c <= '~') || c == '\r' || c == '\n') << "not 7-bit text";
  }
  std::set<std::string> strings = {"12"};  // the drivers' folder, Windows' own
  for (const std::string& line : SectionOf(inf, "Strings")) strings.insert(line.substr(0, line.find(" = ")));
  for (const std::string& line : LinesOf(inf)) {
    const std::vector<std::string> tokens = Split(line, '%');
    for (std::size_t i = 1; i < tokens.size(); i += 2) {
      EXPECT_EQ(1U, strings.count(tokens[i])) << line;
    }
    const std::string key = line.substr(0, line.find(" = "));
    if (key == "CopyFiles" || key == "AddReg") {
      for (const std::string& section : Split(line.substr(key.size() + 3), ',')) {
        EXPECT_FALSE(SectionOf(inf, section).empty()) << line;
      }
    } else if (key == "AddService" || key == "AddInterface") {
      EXPECT_FALSE(SectionOf(inf, line.substr(line.rfind(',') + 1)).empty()) << line;
    }
  }
  for (const std::string& line : SectionOf(inf, "KWA.NTamd64")) {
    const std::size_t start = line.find(" = ") + 3;
    const std::string install = line.substr(start, line.find(',') - start) + ".NTamd64";
    EXPECT_FALSE(SectionOf(inf, install).empty()) << install;
    EXPECT_FALSE(SectionOf(inf, install + ".Services").empty()) << install;
  }
}

TEST(SampleFiles, HaveAnySizeThatIsLargeEnough) {
  for (const std::size_t more : {0, 1, 2, 79, 200, 255, 256, 257, 511, 3000, 20001}) {
    EXPECT_EQ(40000 + more, kwa::MakeInf(40000 + more).size());
    EXPECT_EQ(700 + more, kwa::MakeCatalog(700 + more).size());
    EXPECT_EQ(6000 + more, kwa::MakeHelpFile(6000 + more).size());
    const std::string licence = kwa::MakeLicenceText(kwa::LicenceLanguage::kGerman, 4851 + more);
    EXPECT_EQ(4851 + more, licence.size());
    if (more != 1) LinesOf(licence);  // one byte has no room for a line end
  }
  EXPECT_THROW(kwa::MakeInf(1000), std::runtime_error);
  EXPECT_THROW(kwa::MakeCatalog(699), std::runtime_error);
  EXPECT_THROW(kwa::MakeCatalog(65536), std::runtime_error);
  EXPECT_THROW(kwa::MakeHelpFile(4299), std::runtime_error);
  EXPECT_THROW(kwa::MakeLicenceText(kwa::LicenceLanguage::kEnglish, 4001), std::runtime_error);
  EXPECT_THROW(kwa::MakeWatermark(47635), std::runtime_error);
}

TEST(SampleCatalog, IsSignedDataInDer) {
  for (const std::size_t size : {700, 11519, 65535}) {
    const std::string bytes = kwa::MakeCatalog(size);
    const auto* position = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned char* const end = position + bytes.size();
    const std::unique_ptr<PKCS7, decltype(&PKCS7_free)> parsed(
        d2i_PKCS7(nullptr, &position, static_cast<long>(bytes.size())), PKCS7_free);
    ASSERT_NE(nullptr, parsed) << size;
    EXPECT_TRUE(PKCS7_type_is_signed(parsed.get())) << size;
    EXPECT_EQ(end, position) << size;
  }
}

TEST(SampleFiles, HaveTheHeadersOfTheirKinds) {
  const std::string bitmap = kwa::MakeWatermark(47634);
  EXPECT_EQ("BM", bitmap.substr(0, 2));
  EXPECT_EQ(47634U, NumberAt(bitmap, 2, 4));
  EXPECT_EQ(54U, NumberAt(bitmap, 10, 4));
  EXPECT_EQ(51U, NumberAt(bitmap, 18, 4));
  EXPECT_EQ(305U, NumberAt(bitmap, 22, 4));
  EXPECT_EQ(24U, NumberAt(bitmap, 28, 2));
  EXPECT_EQ(0U, NumberAt(bitmap, 30, 4));

  const std::string help = kwa::MakeHelpFile(31456);
  EXPECT_EQ("ITSF", help.substr(0, 4));
  EXPECT_EQ(0x0407U, NumberAt(help, 20, 4));

  const std::string german = kwa::MakeLicenceText(kwa::LicenceLanguage::kGerman, 4851);
  EXPECT_EQ("\xEF\xBB\xBF", german.substr(0, 3));
  EXPECT_NE(std::string::npos, german.find("KWA-Ger\xC3\xA4te"));
  EXPECT_EQ(std::string::npos, german.find("=="));
}

// A folder with stand-ins for the built programs: what matters is which of them ends up where.
class SamplePayload : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* machine : {"x86", "x64"}) {
      for (const char* name : {"settings.exe", "driver.sys", "asio.dll", "mixer.exe", "standin.exe"}) {
        WriteWholeFile(folder.Path() / machine / name, std::string(machine) + name);
      }
    }
  }

  std::string File(const std::string& name) { return ReadWholeFile(folder.Path() / "out" / name); }
  void Make(const std::string& contents) {
    kwa::MakeSamplePayload({contents, folder / "x86", folder / "x64"}, folder / "out");
  }

  const TemporaryFolder folder;
};

TEST_F(SamplePayload, HoldsTheListedFilesOfTheirSizesAlone) {
  WriteWholeFile(folder.Path() / "out/a/stray.txt", "stray");
  Make(KWA_CONTENTS);
  std::map<std::string, std::set<std::string>> expected;
  for (const kwa::ContentsFile& file : kwa::ReadPayloadContents(KWA_CONTENTS)) {
    const std::string archive = file.archive == 'A' ? "a" : "b";
    EXPECT_EQ(file.size, fs::file_size(folder.Path() / "out" / archive / file.name)) << file.name;
    expected[archive].insert(file.name);
  }
  for (const auto& [archive, names] : expected) {
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.end()), NamesIn(folder.Path() / "out" / archive));
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
  const fs::file_time_type past = fs::last_write_time(folder.Path() / "out/b/kwa.bmp") - std::chrono::hours(1);
  const std::string german = File("b/eula_de.txt");
  std::string wrong = german;
  wrong[100] ^= 1;
  WriteWholeFile(folder.Path() / "out/b/eula_de.txt", wrong);
  for (const char* name : {"b/kwa.bmp", "b/eula_de.txt"}) fs::last_write_time(folder.Path() / "out" / name, past);
  Make(KWA_CONTENTS);
  EXPECT_EQ(past, fs::last_write_time(folder.Path() / "out/b/kwa.bmp"));
  EXPECT_NE(past, fs::last_write_time(folder.Path() / "out/b/eula_de.txt"));
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
