// Damages the built installer, one fault at a time: each must give its finding and no other.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>

#include "built_archive.h"
#include "inf_cases.h"
#include "installer_image.h"
#include "temporary_folder.h"
#include "tool_run.h"
#include "verify/verification.h"

namespace {

kwa::Findings Verify(const InstallerImage& image, const std::vector<kwa::ContentsFile>& contents) {
  const kwa::ByteSpan bytes{std::string_view(image.Bytes())};
  return kwa::VerifyInstaller(kwa::ReadInstallerFile(bytes, "damaged.exe"), contents);
}

std::string Wide(const std::string& text) {
  return Utf16Inf(text).substr(2);
}

using Change = std::function<void(InstallerImage&)>;

// Replaces a text by another one as long: the last in the file, which is the program's own behind the payload, or the
// first in the INF.
Change Replace(const std::string& old, const std::string& text, bool isInInf) {
  return [=](InstallerImage& image) {
    ASSERT_EQ(old.size(), text.size());
    const std::string& bytes = image.Bytes();
    const std::size_t at = isInInf ? bytes.find(old, image.Find("marlin_usb.inf").bodyPosition) : bytes.rfind(old);
    ASSERT_NE(at, std::string::npos) << old;
    image.SetText(at, text);
  };
}
Change InProgram(const std::string& old, const std::string& text) {
  return Replace(old, text, false);
}
Change InInf(const std::string& old, const std::string& text) {
  return Replace(old, text, true);
}
// The text of the version record, three characters of UTF-16.
Change VersionText(const std::string& text) {
  const std::string key = Wide("FileVersion") + std::string(4, '\0');
  return InProgram(key + Wide("1.0"), key + text);
}
Change InHeader(std::size_t offset, const std::string& bytes) {
  return [=](InstallerImage& image) { image.SetText(image.Word(0x3C) + offset, bytes); };
}
Change InBody(const char* file, std::size_t offset, const std::string& bytes) {
  return [=](InstallerImage& image) { image.SetText(image.Find(file).bodyPosition + offset, bytes); };
}
Change Name(const char* file, const std::string& name) {
  return [=](InstallerImage& image) { image.SetName(image.Find(file), name); };
}
// A Windows program among the payload gets the machine x86.
Change MachineX86(const char* file) {
  return [=](InstallerImage& image) {
    const std::size_t body = image.Find(file).bodyPosition;
    image.SetText(body + image.Word(body + 0x3C) + 4, "\x4C\x01");
  };
}
// A signature of 8 bytes behind some padding.
Change Signature(std::uint32_t padding) {
  return [=](InstallerImage& image) {
    const auto size = static_cast<std::uint32_t>(image.Bytes().size());
    image.SetText(image.Word(0x3C) + 152, WordBytes(size + padding) + WordBytes(8));
    image.Resize(size + padding + 8);
  };
}

struct Damage {
  const char* what;
  Change apply;
  std::vector<std::string> findings;  // each "code: where: " and a part of what it says, with "?" for a warning
};

const std::string kVersions = "versions-differ: executable, version record: its versions differ: file 1.0.0.0 ";
const char kInf[] = "package, marlin_usb.inf: ";

std::string OfInf(const std::string& code, const std::string& what) {
  return code + ": " + kInf + what;
}

// clang-format off
const Damage kDamages[] = {
    {"None", [](InstallerImage&) {}, {}},
    {"Count", [](InstallerImage& image) { image.SetCount(image.B(), 6); },
     {"archive-count: : holds one payload archive", "name-not-zero-filled: archive at offset "}},
    {"NameWithFolder", Name("dpinst.exe", "dp\\nst.exe"), {"name-unfit: archive B, dp\\\\nst.exe: the name holds"}},
    {"NameTwiceWithoutRegardToCase", Name("kwa.bmp", "Panorama.EXE"),
     {"name-twice: archive B, Panorama.EXE: has the same name as archive A, Panorama.exe",
      "unexpected-file: archive B, Panorama.EXE: stands in the place of kwa.bmp"}},
    {"NameOutOfOrder", Name("kwa.bmp", "dwa.bmp"),
     {"?order: archive B, dwa.bmp: stands behind", "unexpected-file: archive B, dwa.bmp: stands in the place of kwa.bmp"}},
    {"Padding", InBody("marlin_usb.cat", 11519, "x"), {"?padding: archive A, marlin_usb.cat: the padding"}},
    {"CutOff", [](InstallerImage& image) { image.Resize(image.Find("Panorama.exe").bodyPosition + 1000); },
     {"truncated: section .rdata: the file ends ", "body-past-end: archive at offset "}},
    {"OtherSize", [](InstallerImage& image) { image.SetSize(image.Find("eula_en.txt"), 4004); }, {"size: archive B, eula_en.txt: has 4004 bytes instead of 4002"}},
    {"DriverOfTheWrongMachine", MachineX86("marlin_usb_64.sys"),
     {"kind: archive A, marlin_usb_64.sys: is PE32+, x86, native instead of PE32+, x64, native"}},
    {"BitmapOfOtherGeometry", InBody("kwa.bmp", 18, "2"), {"kind: archive B, kwa.bmp: is "}},
    {"NoVersion", InInf("DriverVer ", "DriverVex "), {OfInf("version-key-missing", "[Version] has no DriverVer")}},
    {"VersionOtherThanTheDrivers", InInf("02/13/2014,1.0.42.0", "02/13/2014,1.0.42.1"),
     {"?driver-version: archive A, marlin_usb.sys: ", "?driver-version: archive A, marlin_usb_64.sys: "}},
    {"NoSuchDate", InInf("02/13/2014,1.0.42.0", "02/30/2014,1.0.42.1"), {OfInf("driver-ver", "")}},
    {"NoDisplayName", InInf("PackageDisplayName", "PackageDisplayNamx"),
     {OfInf("version-key-missing", "[Version] has no DriverPackageDisplayName")}},
    {"NameThatBreaksXml", InInf("= \"Marlin USB\"", "= \"Marlin&USB\""),
     {OfInf("value-breaks-xml", "DriverPackageDisplayName holds \"&\"")}},
    // Neither a control character nor such a byte is in a 7-bit text.
    {"NameWithControl", InInf("= \"Marlin USB\"", "= \"Marlin\x01USB\""),
     {"kind: archive A, marlin_usb.inf: is ",
      OfInf("value-breaks-xml", "DriverPackageDisplayName holds a control character, which breaks the XML")}},
    {"NameBeyondAscii", InInf("Name = \"Marlin", "Name = \"Marl\xEFn"),
     {"kind: archive A, marlin_usb.inf: is ", OfInf("value-breaks-xml", "DriverPackageDisplayName holds char")}},
    {"MarkOfUtf8", InBody("marlin_usb.inf", 0, "\xEF\xBB\xBF"),
     {"kind: archive A, marlin_usb.inf: is ", OfInf("inf-encoding", "begins with the mark of UTF-8")}},
    {"NoFamily", InInf("= \"Marlin USB\"", "= \"Heron XYZ!\""),
     {OfInf("no-family", "DriverPackageDisplayName \"Heron XYZ!\" names no device family")}},
    {"CatalogNotCarried", InInf("marlin_usb.cat", "marlin_usc.cat"),
     {OfInf("catalog-missing", "CatalogFile \"marlin_usc.cat\" is not carried")}},
    {"SourceFileNotCarried", InInf("marlin_usb.sys = 1", "marlin_usc.sys = 1"),
     {OfInf("source-file-missing", "[SourceDisksFiles] names \"marlin_usc.sys\"")}},
    {"Machine", InHeader(4, "\x64\x86"), {"machine: executable: is not a 32-bit x86 program"}},
    {"ConsoleSubsystem", InHeader(92, "\x03"), {"subsystem: executable: is not of the GUI subsystem"}},
    {"Windows2000", InHeader(72, "\x05"), {}},
    {"LaterWindows", InHeader(72, "\x06"), {"windows-version: executable: asks for a Windows later"}},
    {"Library", InHeader(23, "\x23"), {"not-a-program: executable: is not marked as a program"}},
    {"NoAslr", InHeader(94, std::string("\0\x81", 2)), {"no-aslr: executable: is not marked for address space"}},
    {"NoRelocations", InHeader(160, std::string(8, '\0')), {"no-relocations: executable: has no relocations"}},
    {"NoDep", InHeader(94, "\x40\x80"), {"no-dep: executable: is not marked for data execution prevention"}},
    {"NotTerminalServerAware", InHeader(94, "\x40\x01"), {"?not-terminal-server-aware: executable: is not marked"}},
    {"WritableCode", InHeader(248 + 39, "\xE0"), {"writable-code: executable, section .text: can be written"}},
    {"Manifest", InProgram("requireAdministrator", "requireAdministrat0r"),
     {"manifest-level: executable, manifest: asks for the level \"requireAdministrat0r\""}},
    {"Version", [](InstallerImage& image) { image.SetText(image.Bytes().rfind("\xBD\x04\xEF\xFE") + 10, "\x02"); },
     {"versions-differ: executable, version record: its versions differ: file 2.0.0.0"}},
    {"VersionTextMissing", InProgram(Wide("FileVersion"), Wide("FileVersiom")), {kVersions + "(\"\")"}},
    {"VersionTextCut", VersionText(Wide("1.") + Wide({0})), {kVersions + "(\"1.\")"}},
    {"VersionTextOfAPairAndAHalf", VersionText(std::string("\x34\xD8\0\xDC\x1E\xDD", 6)),
     {kVersions + R"(("\xF0\x9D\x80\x80\xEF\xBF\xBD"))"}},
    {"VersionTextOfHalves", VersionText(std::string("\0\xD8z\0\x34\xD8", 6)),
     {kVersions + R"(("\xEF\xBF\xBDz\xEF\xBF\xBD"))"}},
    {"OtherLibrary", InProgram("SHELL32.dll", "SHELL33.dll"),
     {"library-not-allowed: executable, imports of SHELL33.dll: only"}},
    {"LaterFunction", InProgram("GetVersionExA", "GetVersionExB"),
     {"import-too-new: executable, imports of KERNEL32.dll: GetVersionExB is not known"}},
    {"BytesBehindTheLastSection", [](InstallerImage& image) { image.Resize(image.Bytes().size() + 100); },
     {"?overlay: executable: 100 bytes behind the last section are no signature"}},
    {"SignatureAtTheEnd", Signature(0), {"signature-broken: executable: "}},
    {"SignatureBehindPadding", Signature(8), {"signature-broken: executable: ", "?overlay: executable: 8 bytes behind"}},
    {"SignatureInAnOddPlace", Signature(4), {"signature-broken: executable: ", "signature-place: executable: its security directory leads to no"}},
};
// clang-format on

TEST(DamagedInstaller, GivesItsFindingAndNoOther) {
  const InstallerImage sound;
  const kwa::PayloadContents contents = kwa::ReadPayloadContents(KWA_CONTENTS);
  for (const Damage& damage : kDamages) {
    SCOPED_TRACE(damage.what);
    InstallerImage image = sound;
    damage.apply(image);
    std::vector<std::string> lines;
    for (const kwa::Finding& finding : Verify(image, contents)) {
      // Whatever changes a file of the payload is noticed by these as well.
      if (finding.code != "not-in-catalog" && (finding.code != "signature-broken" || finding.where == "executable")) {
        lines.push_back((finding.severity == kwa::Severity::Error ? "" : "?") + finding.code + ": " + finding.where +
                        ": " + finding.what);
      }
    }
    ASSERT_EQ(lines.size(), damage.findings.size()) << testing::PrintToString(lines);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      EXPECT_EQ(lines[i].substr(0, damage.findings[i].size()), damage.findings[i]);
    }
  }
}

// What is left to the list of contents, the installer's own names bring up without one.
TEST(Verify, WithoutContentsAsksForWhatTheInstallerNames) {
  InstallerImage image;
  MachineX86("dpinst64.exe")(image);
  Name("eula_de.txt", "eula_da.txt")(image);
  InBody("eula_en.txt", 100, "\xFF")(image);
  std::vector<std::string> lines;
  for (const kwa::Finding& finding : Verify(image, {})) {
    lines.push_back(finding.where + ": " + finding.code);
  }
  EXPECT_EQ(lines, (std::vector<std::string>{"archive B, dpinst64.exe: kind", "eula_de.txt: missing-file",
                                             "archive B, eula_en.txt: not-utf8",
                                             "archive B, dpinst64.exe: signature-broken"}));
}

TEST(Verify, ExitStatusAndOutputTellTheFindings) {
  const TemporaryFolder folder;
  InstallerImage image;
  InBody("marlin_usb.cat", 11519, "x")(image);
  const std::string warned = folder / "warned.exe";
  WriteWholeFile(warned, image.Bytes());
  InBody("marlin_usb.inf", 0, "\xEF\xBB\xBF")(image);
  const std::string failed = folder / "failed.exe";
  WriteWholeFile(failed, image.Bytes());
  const std::string single = folder / "single.kwap";
  WriteWholeFile(single, BuildArchive({{"dpinst.exe", "1"}}));
  const std::string warning = "warning: archive A, marlin_usb.cat: the padding behind its body is not zero\n";
  const std::string error =
      std::string("error: ") + kInf + "begins with the mark of UTF-8, which not every Windows knows\n";
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string output;
  } cases[] = {
      {{"verify", KWA_INSTALLER, "--contents", KWA_CONTENTS}, 0, KWA_INSTALLER ": in order\n"},
      {{"verify", warned}, 1, warning},
      {{"verify", warned, "--allow-warnings"}, 0, warning},
      {{"verify", failed, "--allow-warnings"}, 1, warning + error},
      {{"verify", single, "--contents", KWA_CONTENTS},
       1,
       "error: archive B, dpinst.exe: has 1 bytes instead of 921992\nerror: archive B, dpinst64.exe: is missing\n"
       "error: archive B, eula_de.txt: is missing\nerror: archive B, eula_en.txt: is missing\n"
       "error: archive B, kwa.bmp: is missing\n"},
      {{"verify", folder / "missing.exe"}, 1, ""},
      {{"verify", warned, "--contents", warned}, 1, ""},
      {{"verify", KWA_INSTALLER, "--contents", ""}, 2, ""},
  };
  for (const auto& test : cases) {
    const ToolRun run = RunTool(test.arguments);
    EXPECT_EQ(run.status, test.status) << testing::PrintToString(test.arguments) << run.errors;
    EXPECT_EQ(run.output, test.output);
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), test.output.empty() ? 1 : 0) << run.errors;
  }
  const auto document = nlohmann::json::parse(RunTool({"verify", warned, "--json"}).output);
  EXPECT_EQ(document.dump(), R"({"file":")" + warned + R"(","findings":[{"code":"padding","severity":"warning",)" +
                                 R"("what":"the padding behind its body is not zero",)" +
                                 R"("where":"archive A, marlin_usb.cat"}]})");
  // Where it cannot be known what Windows will read, the preview is a guess.
  const ToolRun preview = RunTool({"preview", failed});
  EXPECT_EQ(preview.status, 1);
  EXPECT_NE(preview.output, "");
  EXPECT_EQ(preview.errors,
            "kwapayload: " + failed +
                ": marlin_usb.inf begins with the mark of UTF-8, which not every Windows knows: what is "
                "printed is a guess\n");
}

}  // namespace
