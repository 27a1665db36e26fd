// Damages the built installer, one fault at a time: each must give its finding and no other.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "archive/archive_format.h"
#include "built_archive.h"
#include "installer_file.h"
#include "temporary_folder.h"
#include "tool_run.h"
#include "verification.h"

namespace {

using kwa::kArchiveHeaderSize;
using kwa::kEntryNameCapacity;

const std::string& BuiltInstaller() {
  static const std::string bytes = ReadWholeFile(KWA_INSTALLER);
  return bytes;
}

kwa::ByteSpan Span(const std::string& bytes) {
  return kwa::ByteSpan(std::string_view(bytes));
}

// Where the parts of the built installer lie, in bytes from its start.
struct Places {
  std::size_t archives[2];
  std::size_t closingWords[2];
  std::size_t header;  // the "PE" signature

  std::size_t Entry(int archive, std::size_t index) const {
    return archives[archive] + kArchiveHeaderSize + index * sizeof(kwa::ArchiveEntry);
  }
  std::size_t Size(int archive, std::size_t index) const { return Entry(archive, index) + kEntryNameCapacity; }
};

const kwa::ArchiveItem& Item(const kwa::InstallerFile& installer, const std::string& name) {
  for (const kwa::LocatedArchive& located : installer.archives) {
    for (const kwa::ArchiveItem& item : located.archive.items) {
      if (item.name == name) {
        return item;
      }
    }
  }
  throw std::logic_error("the built installer carries no " + name);
}

const kwa::InstallerFile& BuiltFile() {
  static const kwa::InstallerFile file = kwa::ReadSoundInstallerFile(Span(BuiltInstaller()), KWA_INSTALLER);
  return file;
}

const Places& BuiltPlaces() {
  static const Places places = [] {
    Places found = {};
    for (int i = 0; i < 2; ++i) {
      const kwa::LocatedArchive& located = BuiltFile().archives.at(static_cast<std::size_t>(i));
      found.archives[i] = located.fileOffset;
      found.closingWords[i] = located.fileOffset + located.archive.size;
    }
    found.header = Span(BuiltInstaller()).U32(0x3C);
    return found;
  }();
  return places;
}

std::size_t BodyPlace(const std::string& name) {
  return static_cast<std::size_t>(Item(BuiltFile(), name).body.Data() - Span(BuiltInstaller()).Data());
}

void PutText(std::string& bytes, std::size_t offset, const std::string& text) {
  bytes.replace(offset, text.size(), text);
}

void PutHalf(std::string& bytes, std::size_t offset, unsigned value) {
  PutText(bytes, offset, {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)});
}

// Replaces the last occurrence in the file: the program's own, behind the payload.
void ReplaceLast(std::string& bytes, const std::string& old, const std::string& text) {
  const std::size_t at = bytes.rfind(old);
  ASSERT_NE(at, std::string::npos) << old;
  ASSERT_EQ(old.size(), text.size());
  PutText(bytes, at, text);
}

// Replaces the first occurrence in the INF.
void ReplaceInInf(std::string& bytes, const std::string& old, const std::string& text) {
  const std::size_t at = bytes.find(old, BodyPlace("marlin_usb.inf"));
  ASSERT_NE(at, std::string::npos) << old;
  ASSERT_EQ(old.size(), text.size());
  PutText(bytes, at, text);
}

// The machine of a Windows program among the payload.
void PutMachine(std::string& bytes, const std::string& name, unsigned machine) {
  const std::size_t body = BodyPlace(name);
  PutHalf(bytes, body + Span(bytes).U32(body + 0x3C) + 4, machine);
}

struct Damage {
  const char* what;
  std::function<void(std::string& bytes, const Places& at)> apply;
  std::vector<std::string> findings;  // each "severity: where: " and a part of what it says
};

void PrintTo(const Damage& damage, std::ostream* stream) {
  *stream << damage.what;
}

class DamagedInstaller : public testing::TestWithParam<Damage> {};

TEST_P(DamagedInstaller, GivesItsFindingAndNoOther) {
  std::string bytes = BuiltInstaller();
  GetParam().apply(bytes, BuiltPlaces());
  const std::vector<kwa::Finding> findings =
      kwa::VerifyInstaller(kwa::ReadInstallerFile(Span(bytes), "damaged.exe"), kwa::ReadPayloadContents(KWA_CONTENTS));
  std::vector<std::string> lines;
  lines.reserve(findings.size());
  for (const kwa::Finding& finding : findings) {
    lines.push_back((finding.severity == kwa::Severity::Error ? "error: " : "warning: ") + finding.where + ": " +
                    finding.what);
    EXPECT_NE(finding.code, "") << lines.back();
  }
  ASSERT_EQ(lines.size(), GetParam().findings.size()) << testing::PrintToString(lines);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].substr(0, GetParam().findings[i].size()), GetParam().findings[i]);
  }
}

const Damage kLayoutDamages[] = {
    {"None", [](std::string&, const Places&) {}, {}},
    {"Magic",
     [](std::string& bytes, const Places& at) { PutText(bytes, at.archives[0], "KWAQ"); },
     {"error: archive A: begins with \"KWAQ\""}},
    {"Count",
     [](std::string& bytes, const Places& at) { PutWord(bytes, at.archives[1] + 4, 6); },
     {"error: archive B: says that it has 6 entries, but has 5"}},
    {"NameNotEnded",
     [](std::string& bytes, const Places& at) { PutText(bytes, at.Entry(0, 8), std::string(kEntryNameCapacity, 'x')); },
     {"error: archive A, " + std::string(kEntryNameCapacity, 'x') + ": the name is not ended"}},
    {"NameEmpty",
     [](std::string& bytes, const Places& at) {
       PutText(bytes, at.Entry(1, 0), std::string(kEntryNameCapacity, '\0'));
     },
     {"error: archive B: an entry has no name"}},
    {"NameNotZeroFilled",
     [](std::string& bytes, const Places& at) { bytes[at.Entry(0, 0) + 200] = 'x'; },
     {"warning: archive A, marlinusb.exe: the bytes behind the name's end"}},
    {"NameWithFolder",
     [](std::string& bytes, const Places& at) { bytes[at.Entry(1, 0) + 2] = '\\'; },
     {"error: archive B, dp\\\\nst.exe: the name holds"}},
    {"NameTwiceWithoutRegardToCase",
     [](std::string& bytes, const Places& at) { PutText(bytes, at.Entry(1, 4), std::string("Panorama.EXE\0", 13)); },
     {"error: archive B, Panorama.EXE: has the same name as archive A, Panorama.exe",
      "error: archive B, Panorama.EXE: stands in the place of kwa.bmp"}},
    {"SizeTooLarge",
     [](std::string& bytes, const Places& at) { PutWord(bytes, at.Size(0, 3), 0x80000000); },
     {"error: archive A, marlin_usb.sys: has 2147483648 bytes"}},
    {"SizePastTheEnd",
     [](std::string& bytes, const Places& at) { PutWord(bytes, at.Size(1, 2), 0x7FFFFFF0); },
     {"error: archive B, eula_de.txt: its body of 2147483632 bytes runs past"}},
    {"Padding",
     [](std::string& bytes, const Places&) { bytes[BodyPlace("marlin_usb.cat") + 11519] = 'x'; },
     {"warning: archive A, marlin_usb.cat: the padding"}},
    {"ClosingWord",
     [](std::string& bytes, const Places& at) { bytes[at.closingWords[1]] = 'x'; },
     {"warning: archive B: no zero word"}},
    {"CutOff",
     [](std::string& bytes, const Places&) { bytes.resize(BodyPlace("Panorama.exe") + 1000); },
     {"error: section .rdata: the file ends ", "error: archive A, Panorama.exe: its body"}},
};
INSTANTIATE_TEST_SUITE_P(Layout, DamagedInstaller, testing::ValuesIn(kLayoutDamages),
                         [](const auto& test) { return std::string(test.param.what); });

const Damage kPayloadDamages[] = {
    {"OtherName",
     [](std::string& bytes, const Places& at) { bytes[at.Entry(1, 4)] = 'l'; },
     {"error: archive B, lwa.bmp: stands in the place of kwa.bmp"}},
    {"OtherSize",
     [](std::string& bytes, const Places& at) { PutWord(bytes, at.Size(1, 3), 4004); },
     {"error: archive B, eula_en.txt: has 4004 bytes instead of 4002"}},
    {"DpinstOfTheWrongMachine",
     [](std::string& bytes, const Places&) { PutMachine(bytes, "dpinst.exe", 0x8664); },
     {"error: archive B, dpinst.exe: is PE32, x64, Windows GUI program instead of PE32, x86"}},
    {"DriverOfTheWrongMachine",
     [](std::string& bytes, const Places&) { PutMachine(bytes, "marlin_usb_64.sys", 0x014C); },
     {"error: archive A, marlin_usb_64.sys: is PE32+, x86, native instead of PE32+, x64, native"}},
    {"LicenceNotUtf8",
     [](std::string& bytes, const Places&) { bytes[BodyPlace("eula_de.txt") + 100] = '\xFF'; },
     {"error: archive B, eula_de.txt: is "}},
    {"BitmapOfOtherGeometry",
     [](std::string& bytes, const Places&) { bytes[BodyPlace("kwa.bmp") + 18] = 50; },
     {"error: archive B, kwa.bmp: is "}},
    {"NoVersion",
     [](std::string& bytes, const Places&) { ReplaceInInf(bytes, "DriverVer ", "DriverVex "); },
     {"error: package, marlin_usb.inf: [Version] has no DriverVer"}},
    {"NoDisplayName",
     [](std::string& bytes, const Places&) {
       ReplaceInInf(bytes, "DriverPackageDisplayName", "DriverPackageDisplayNamx");
     },
     {"error: package, marlin_usb.inf: [Version] has no DriverPackageDisplayName"}},
    {"NameThatBreaksXml",
     [](std::string& bytes, const Places&) { ReplaceInInf(bytes, "= \"Marlin USB\"", "= \"Marlin&USB\""); },
     {"error: package, marlin_usb.inf: DriverPackageDisplayName holds \"&\""}},
    {"NameBeyondAscii",
     [](std::string& bytes, const Places&) {
       ReplaceInInf(bytes, "DriverPackageDisplayName = \"Marlin", "DriverPackageDisplayName = \"Marl\xEFn");
     },
     // A text with such a byte is no 7-bit text any more.
     {"error: archive A, marlin_usb.inf: is ", "error: package, marlin_usb.inf: DriverPackageDisplayName holds char"}},
    {"NoFamily",
     [](std::string& bytes, const Places&) { ReplaceInInf(bytes, "= \"Marlin USB\"", "= \"Heron XYZ!\""); },
     {"error: package, marlin_usb.inf: DriverPackageDisplayName \"Heron XYZ!\" names no device family"}},
    {"CatalogNotCarried",
     [](std::string& bytes, const Places&) { ReplaceInInf(bytes, "marlin_usb.cat", "marlin_usc.cat"); },
     {"error: package, marlin_usb.inf: CatalogFile \"marlin_usc.cat\" is not carried"}},
    {"SourceFileNotCarried",
     [](std::string& bytes, const Places&) {
       const std::size_t section = bytes.find("[SourceDisksFiles]", BodyPlace("marlin_usb.inf"));
       PutText(bytes, bytes.find("marlin_usb.sys", section), "marlin_usc.sys");
     },
     {"error: package, marlin_usb.inf: [SourceDisksFiles] names \"marlin_usc.sys\""}},
};
INSTANTIATE_TEST_SUITE_P(Payload, DamagedInstaller, testing::ValuesIn(kPayloadDamages),
                         [](const auto& test) { return std::string(test.param.what); });

const Damage kExecutableDamages[] = {
    {"ConsoleSubsystem",
     [](std::string& bytes, const Places& at) { PutHalf(bytes, at.header + 92, 3); },
     {"error: executable: is not of the GUI subsystem"}},
    {"LaterWindows",
     [](std::string& bytes, const Places& at) { PutHalf(bytes, at.header + 72, 6); },
     {"error: executable: asks for a Windows later"}},
    {"Library",
     [](std::string& bytes, const Places& at) { bytes[at.header + 23] = '\x23'; },
     {"error: executable: is not marked as a program"}},
    {"NoAslr",
     [](std::string& bytes, const Places& at) { PutHalf(bytes, at.header + 94, 0x8100); },
     {"error: executable: is not marked for address space randomization"}},
    {"NoRelocations",
     [](std::string& bytes, const Places& at) { PutText(bytes, at.header + 160, std::string(8, '\0')); },
     {"error: executable: has no relocations"}},
    {"NoDep",
     [](std::string& bytes, const Places& at) { PutHalf(bytes, at.header + 94, 0x8040); },
     {"error: executable: is not marked for data execution prevention"}},
    {"NotTerminalServerAware",
     [](std::string& bytes, const Places& at) { PutHalf(bytes, at.header + 94, 0x0140); },
     {"warning: executable: is not marked as aware of terminal servers"}},
    {"WritableCode",
     [](std::string& bytes, const Places& at) { bytes[at.header + 248 + 39] = '\xE0'; },
     {"error: executable, section .text: can be written and executed"}},
    {"Manifest",
     [](std::string& bytes, const Places&) { ReplaceLast(bytes, "requireAdministrator", "requireAdministrat0r"); },
     {"error: executable, manifest: asks for the level \"requireAdministrat0r\""}},
    {"Version",
     [](std::string& bytes, const Places&) { bytes[bytes.rfind("\xBD\x04\xEF\xFE") + 10] = 2; },
     {"error: executable, version record: its versions differ: file 2.0.0.0"}},
    {"OtherLibrary",
     [](std::string& bytes, const Places&) { ReplaceLast(bytes, "SHELL32.dll", "SHELL33.dll"); },
     {"error: executable, imports of SHELL33.dll: only"}},
    {"LaterFunction",
     [](std::string& bytes, const Places&) { ReplaceLast(bytes, "GetVersionExA", "GetVersionExB"); },
     {"error: executable, imports of KERNEL32.dll: GetVersionExB is not known"}},
    {"BytesBehindTheLastSection",
     [](std::string& bytes, const Places&) { bytes.append(100, 'x'); },
     {"warning: executable: 100 bytes behind the last section are no signature"}},
};
INSTANTIATE_TEST_SUITE_P(Executable, DamagedInstaller, testing::ValuesIn(kExecutableDamages),
                         [](const auto& test) { return std::string(test.param.what); });

// What is left to the list of contents, the installer's own names bring up without one.
TEST(Verify, WithoutContentsAsksForWhatTheInstallerNames) {
  std::string bytes = BuiltInstaller();
  PutMachine(bytes, "dpinst64.exe", 0x014C);
  PutText(bytes, BuiltPlaces().Entry(1, 2), "eula_da.txt");
  bytes[BodyPlace("eula_en.txt") + 100] = '\xFF';
  const std::vector<kwa::Finding> findings =
      kwa::VerifyInstaller(kwa::ReadInstallerFile(Span(bytes), "damaged.exe"), {});
  std::vector<std::string> lines;
  lines.reserve(findings.size());
  for (const kwa::Finding& finding : findings) {
    lines.push_back(finding.where + ": " + finding.code);
  }
  EXPECT_EQ(lines, (std::vector<std::string>{"archive B, dpinst64.exe: kind", "eula_de.txt: missing-file",
                                             "archive B, eula_en.txt: not-utf8"}));
}

TEST(Verify, ExitStatusAndOutputTellTheFindings) {
  const TemporaryFolder folder;
  std::string bytes = BuiltInstaller();
  bytes[BuiltPlaces().closingWords[1]] = 'x';
  const std::string warned = folder / "warned.exe";
  WriteWholeFile(warned, bytes);
  PutText(bytes, BuiltPlaces().archives[0], "KWAQ");
  const std::string failed = folder / "failed.exe";
  WriteWholeFile(failed, bytes);
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
