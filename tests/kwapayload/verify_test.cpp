// Damages the built installer, one fault at a time: each must give its finding and no other.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "installer_image.h"
#include "temporary_folder.h"
#include "tool_run.h"
#include "verify/verification.h"

namespace {

std::vector<kwa::Finding> Verify(const InstallerImage& image, const std::vector<kwa::ContentsFile>& contents) {
  const kwa::ByteSpan bytes{std::string_view(image.Bytes())};
  return kwa::VerifyInstaller(kwa::ReadInstallerFile(bytes, "damaged.exe"), contents);
}

std::size_t PeHeader(const InstallerImage& image) {
  return image.Word(0x3C);
}

// Replaces a text by another one as long: the last in the file, which is the program's own behind the payload, or the
// first in the INF.
void Replace(InstallerImage& image, std::size_t at, const std::string& old, const std::string& text) {
  ASSERT_NE(at, std::string::npos) << old;
  ASSERT_EQ(old.size(), text.size());
  image.SetText(at, text);
}
void ReplaceLast(InstallerImage& image, const std::string& old, const std::string& text) {
  Replace(image, image.Bytes().rfind(old), old, text);
}
void ReplaceInInf(InstallerImage& image, const std::string& old, const std::string& text) {
  Replace(image, image.Bytes().find(old, image.Find("marlin_usb.inf").bodyPosition), old, text);
}

void SetByte(InstallerImage& image, const std::string& file, std::size_t offset, char byte) {
  image.SetText(image.Find(file).bodyPosition + offset, {byte});
}

// The machine of a Windows program among the payload.
void SetMachine(InstallerImage& image, const std::string& file, std::uint16_t machine) {
  const std::size_t body = image.Find(file).bodyPosition;
  image.SetHalf(body + image.Word(body + 0x3C) + 4, machine);
}

struct Damage {
  const char* what;
  void (*apply)(InstallerImage&);
  std::vector<std::string> findings;  // each "severity: where: " and a part of what it says
};

void PrintTo(const Damage& damage, std::ostream* stream) {
  *stream << damage.what;
}

class DamagedInstaller : public testing::TestWithParam<Damage> {};

TEST_P(DamagedInstaller, GivesItsFindingAndNoOther) {
  InstallerImage image;
  GetParam().apply(image);
  std::vector<std::string> lines;
  for (const kwa::Finding& finding : Verify(image, kwa::ReadPayloadContents(KWA_CONTENTS))) {
    lines.push_back((finding.severity == kwa::Severity::Error ? "error: " : "warning: ") + finding.where + ": " +
                    finding.what);
    EXPECT_NE(finding.code, "") << lines.back();
  }
  ASSERT_EQ(lines.size(), GetParam().findings.size()) << testing::PrintToString(lines);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].substr(0, GetParam().findings[i].size()), GetParam().findings[i]);
  }
}

// clang-format off
const Damage kLayoutDamages[] = {
    {"None", [](InstallerImage&) {}, {}},
    {"Magic", [](InstallerImage& image) { image.SetText(image.A().position, "KWAQ"); },
     {"error: archive A: begins with \"KWAQ\""}},
    {"Count", [](InstallerImage& image) { image.SetCount(image.B(), 6); },
     {"error: archive B: says that it has 6 entries, but has 5"}},
    {"NameNotEnded", [](InstallerImage& image) { image.SetName(image.Find("Panorama.exe"), std::string(260, 'x')); },
     {"error: archive A, " + std::string(260, 'x') + ": the name is not ended"}},
    {"NameEmpty", [](InstallerImage& image) { image.SetName(image.Find("dpinst.exe"), ""); },
     {"error: archive B: an entry has no name"}},
    {"NameNotZeroFilled",
     [](InstallerImage& image) { image.SetText(image.Find("marlinusb.exe").entryPosition + 200, "x"); },
     {"warning: archive A, marlinusb.exe: the bytes behind the name's end"}},
    {"NameWithFolder", [](InstallerImage& image) { image.SetName(image.Find("dpinst.exe"), "dp\\nst.exe"); },
     {"error: archive B, dp\\\\nst.exe: the name holds"}},
    {"NameTwiceWithoutRegardToCase",
     [](InstallerImage& image) { image.SetName(image.Find("kwa.bmp"), "Panorama.EXE"); },
     {"error: archive B, Panorama.EXE: has the same name as archive A, Panorama.exe",
      "error: archive B, Panorama.EXE: stands in the place of kwa.bmp"}},
    {"SizeTooLarge", [](InstallerImage& image) { image.SetSize(image.Find("marlin_usb.sys"), 0x80000000); },
     {"error: archive A, marlin_usb.sys: has 2147483648 bytes"}},
    {"SizePastTheEnd", [](InstallerImage& image) { image.SetSize(image.Find("eula_de.txt"), 0x7FFFFFF0); },
     {"error: archive B, eula_de.txt: its body of 2147483632 bytes runs past"}},
    {"Padding", [](InstallerImage& image) { SetByte(image, "marlin_usb.cat", 11519, 'x'); },
     {"warning: archive A, marlin_usb.cat: the padding"}},
    {"ClosingWord", [](InstallerImage& image) { image.SetWord(image.B().end, 'x'); },
     {"warning: archive B: no zero word"}},
    {"CutOff", [](InstallerImage& image) { image.Resize(image.Find("Panorama.exe").bodyPosition + 1000); },
     {"error: section .rdata: the file ends ", "error: archive A, Panorama.exe: its body"}},
};

const Damage kPayloadDamages[] = {
    {"OtherName", [](InstallerImage& image) { image.SetName(image.Find("kwa.bmp"), "lwa.bmp"); },
     {"error: archive B, lwa.bmp: stands in the place of kwa.bmp"}},
    {"OtherSize", [](InstallerImage& image) { image.SetSize(image.Find("eula_en.txt"), 4004); },
     {"error: archive B, eula_en.txt: has 4004 bytes instead of 4002"}},
    {"DpinstOfTheWrongMachine", [](InstallerImage& image) { SetMachine(image, "dpinst.exe", 0x8664); },
     {"error: archive B, dpinst.exe: is PE32, x64, Windows GUI program, Authenticode-signed instead of PE32, x86"}},
    {"DriverOfTheWrongMachine", [](InstallerImage& image) { SetMachine(image, "marlin_usb_64.sys", 0x014C); },
     {"error: archive A, marlin_usb_64.sys: is PE32+, x86, native instead of PE32+, x64, native"}},
    {"LicenceNotUtf8", [](InstallerImage& image) { SetByte(image, "eula_de.txt", 100, '\xFF'); },
     {"error: archive B, eula_de.txt: is "}},
    {"BitmapOfOtherGeometry", [](InstallerImage& image) { SetByte(image, "kwa.bmp", 18, 50); },
     {"error: archive B, kwa.bmp: is "}},
    {"NoVersion", [](InstallerImage& image) { ReplaceInInf(image, "DriverVer ", "DriverVex "); },
     {"error: package, marlin_usb.inf: [Version] has no DriverVer"}},
    {"NoDisplayName", [](InstallerImage& image) { ReplaceInInf(image, "PackageDisplayName", "PackageDisplayNamx"); },
     {"error: package, marlin_usb.inf: [Version] has no DriverPackageDisplayName"}},
    {"NameThatBreaksXml", [](InstallerImage& image) { ReplaceInInf(image, "= \"Marlin USB\"", "= \"Marlin&USB\""); },
     {"error: package, marlin_usb.inf: DriverPackageDisplayName holds \"&\""}},
    // A text with such a byte is no 7-bit text any more.
    {"NameBeyondAscii", [](InstallerImage& image) { ReplaceInInf(image, "Name = \"Marlin", "Name = \"Marl\xEFn"); },
     {"error: archive A, marlin_usb.inf: is ", "error: package, marlin_usb.inf: DriverPackageDisplayName holds char"}},
    {"NoFamily", [](InstallerImage& image) { ReplaceInInf(image, "= \"Marlin USB\"", "= \"Heron XYZ!\""); },
     {"error: package, marlin_usb.inf: DriverPackageDisplayName \"Heron XYZ!\" names no device family"}},
    {"CatalogNotCarried", [](InstallerImage& image) { ReplaceInInf(image, "marlin_usb.cat", "marlin_usc.cat"); },
     {"error: package, marlin_usb.inf: CatalogFile \"marlin_usc.cat\" is not carried"}},
    {"SourceFileNotCarried",
     [](InstallerImage& image) { ReplaceInInf(image, "marlin_usb.sys = 1", "marlin_usc.sys = 1"); },
     {"error: package, marlin_usb.inf: [SourceDisksFiles] names \"marlin_usc.sys\""}},
};

const Damage kExecutableDamages[] = {
    {"ConsoleSubsystem", [](InstallerImage& image) { image.SetHalf(PeHeader(image) + 92, 3); },
     {"error: executable: is not of the GUI subsystem"}},
    {"LaterWindows", [](InstallerImage& image) { image.SetHalf(PeHeader(image) + 72, 6); },
     {"error: executable: asks for a Windows later"}},
    {"Library", [](InstallerImage& image) { image.SetText(PeHeader(image) + 23, "\x23"); },
     {"error: executable: is not marked as a program"}},
    {"NoAslr", [](InstallerImage& image) { image.SetHalf(PeHeader(image) + 94, 0x8100); },
     {"error: executable: is not marked for address space randomization"}},
    {"NoRelocations", [](InstallerImage& image) { image.SetText(PeHeader(image) + 160, std::string(8, '\0')); },
     {"error: executable: has no relocations"}},
    {"NoDep", [](InstallerImage& image) { image.SetHalf(PeHeader(image) + 94, 0x8040); },
     {"error: executable: is not marked for data execution prevention"}},
    {"NotTerminalServerAware", [](InstallerImage& image) { image.SetHalf(PeHeader(image) + 94, 0x0140); },
     {"warning: executable: is not marked as aware of terminal servers"}},
    {"WritableCode", [](InstallerImage& image) { image.SetText(PeHeader(image) + 248 + 39, "\xE0"); },
     {"error: executable, section .text: can be written and executed"}},
    {"Manifest", [](InstallerImage& image) { ReplaceLast(image, "requireAdministrator", "requireAdministrat0r"); },
     {"error: executable, manifest: asks for the level \"requireAdministrat0r\""}},
    {"Version", [](InstallerImage& image) { image.SetText(image.Bytes().rfind("\xBD\x04\xEF\xFE") + 10, "\x02"); },
     {"error: executable, version record: its versions differ: file 2.0.0.0"}},
    {"OtherLibrary", [](InstallerImage& image) { ReplaceLast(image, "SHELL32.dll", "SHELL33.dll"); },
     {"error: executable, imports of SHELL33.dll: only"}},
    {"LaterFunction", [](InstallerImage& image) { ReplaceLast(image, "GetVersionExA", "GetVersionExB"); },
     {"error: executable, imports of KERNEL32.dll: GetVersionExB is not known"}},
    {"BytesBehindTheLastSection", [](InstallerImage& image) { image.Resize(image.Bytes().size() + 100); },
     {"warning: executable: 100 bytes behind the last section are no signature"}},
};
// clang-format on

std::string NameOf(const testing::TestParamInfo<Damage>& test) {
  return test.param.what;
}
INSTANTIATE_TEST_SUITE_P(Layout, DamagedInstaller, testing::ValuesIn(kLayoutDamages), NameOf);
INSTANTIATE_TEST_SUITE_P(Payload, DamagedInstaller, testing::ValuesIn(kPayloadDamages), NameOf);
INSTANTIATE_TEST_SUITE_P(Executable, DamagedInstaller, testing::ValuesIn(kExecutableDamages), NameOf);

// What is left to the list of contents, the installer's own names bring up without one.
TEST(Verify, WithoutContentsAsksForWhatTheInstallerNames) {
  InstallerImage image;
  SetMachine(image, "dpinst64.exe", 0x014C);
  image.SetName(image.Find("eula_de.txt"), "eula_da.txt");
  SetByte(image, "eula_en.txt", 100, '\xFF');
  std::vector<std::string> lines;
  for (const kwa::Finding& finding : Verify(image, {})) {
    lines.push_back(finding.where + ": " + finding.code);
  }
  EXPECT_EQ(lines, (std::vector<std::string>{"archive B, dpinst64.exe: kind", "eula_de.txt: missing-file",
                                             "archive B, eula_en.txt: not-utf8"}));
}

TEST(Verify, ExitStatusAndOutputTellTheFindings) {
  const TemporaryFolder folder;
  InstallerImage image;
  image.SetWord(image.B().end, 'x');
  const std::string warned = folder / "warned.exe";
  image.WriteTo(warned);
  image.SetText(image.A().position, "KWAQ");
  const std::string failed = folder / "failed.exe";
  image.WriteTo(failed);
  const std::string text = folder / "text.txt";
  WriteWholeFile(text, "no installer");

  const struct {
    std::vector<std::string> arguments;
    int status;
    std::size_t outputLines;
  } cases[] = {
      {{"verify", KWA_INSTALLER, "--contents", KWA_CONTENTS}, 0, 1},
      {{"verify", warned}, 1, 1},
      {{"verify", warned, "--allow-warnings"}, 0, 1},
      {{"verify", failed, "--allow-warnings"}, 1, 2},
      {{"verify", text}, 1, 0},
      {{"verify", folder / "missing.exe"}, 1, 0},
      {{"verify", warned, "--contents", text}, 1, 0},
      {{"verify"}, 2, 0},
  };
  for (const auto& test : cases) {
    const ToolRun run = RunTool(test.arguments);
    EXPECT_EQ(run.status, test.status) << testing::PrintToString(test.arguments) << run.errors;
    EXPECT_EQ(static_cast<std::size_t>(std::count(run.output.begin(), run.output.end(), '\n')), test.outputLines)
        << run.output;
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), test.outputLines == 0 ? 1 : 0) << run.errors;
  }
}

}  // namespace
