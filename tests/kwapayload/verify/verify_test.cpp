// Every kind of finding: each file has one fault, and gives its findings and no others.

#include "verify/verification.h"

#include <gtest/gtest.h>

#include "pe/built_image.h"
#include "temporary_folder.h"
#include "verify/faulty_file.h"

namespace {

constexpr kwa::Severity kWarning = kwa::Severity::Warning;

struct Found {
  std::string code;
  std::string where;  // without the offset of an archive
  kwa::Severity severity = kwa::Severity::Error;
};

struct Row {
  const char* fault;
  FaultyFile file;
  std::vector<Found> findings;
};

const char kInf[] = "package, marlin_usb.inf";
const char kPackage[] = "package, a.inf";
const char kArchive[] = "archive at offset ";
const std::string kVersionText = Utf16("FileVersion") + std::string(4, '\0');

// Places in the archive of InArchive.
constexpr std::size_t kSecondEntry = 8 + 264;
constexpr std::size_t kBodies = kSecondEntry + 264;
constexpr std::size_t kTerminator = kBodies + 8 + 4;

// What is kept of 1001 findings.
std::vector<Found> ManyFindings() {
  std::vector<Found> findings(1000, {"name-unfit", "a/b"});
  findings.push_back({"more-findings", ""});
  return findings;
}

// finding_codes_test compares the codes with those in the sources.
// clang-format off
const Row kRows[] = {
    {"none", Installer([](InstallerImage&) {}), {}},
    {"none, without a list", Unlisted(Installer([](InstallerImage&) {})), {}},

    // The archives.
    {"count", Installer([](InstallerImage& image) { image.SetWord(image.B() + 4, 6); }),
     {{"archive-count", ""}, {"name-not-zero-filled", kArchive}}},
    {"cut off", Installer([](InstallerImage& image) { image.Resize(image.Find("Panorama.exe").bodyPosition + 1000); }),
     {{"truncated", "section .payload"}, {"body-past-end", kArchive}}},
    {"no entries", InArchive(4, WordBytes(0)), {{"no-entries", ""}}},
    {"count beyond the end", InArchive(4, WordBytes(0xFFFFFFFF)), {{"table-past-end", ""}}},
    {"name of 260 bytes", InArchive(kSecondEntry, std::string(260, 'n')), {{"name-not-ended", ""}}},
    {"no name", InArchive(kSecondEntry, std::string(4, '\0')), {{"name-empty", ""}}},
    {"control character in a name", InArchive(kSecondEntry, "\x1F"), {{"name-control", ""}}},
    {"size of 2 GiB", InArchive(kSecondEntry - 4, WordBytes(0x80000000)), {{"size-too-large", "one"}}},
    {"size beyond the end", InArchive(kBodies - 4, WordBytes(99)), {{"body-past-end", "two"}}},
    {"no terminator", InArchive(kTerminator, "x"), {{"closing-word", ""}}},
    {"more after the terminator", InArchive(kTerminator + 4, "x"), {{"trailing-bytes", "", kWarning}}},
    {"padding", InBody("marlin_usb.cat", 11519, "x"), {{"padding", "archive A, marlin_usb.cat", kWarning}}},
    {"more findings than are kept", {[] { return BuildArchive(std::vector<ArchiveBody>(1001, {"a/b", ""})); }}, ManyFindings()},

    // The list of contents and the files that the installer names.
    {"folder in a name", Renamed("dpinst.exe", "dp\\nst.exe"), {{"name-unfit", "archive B, dp\\nst.exe"}}},
    {"name twice", Renamed("kwa.bmp", "Panorama.EXE"),
     {{"name-twice", "archive B, Panorama.EXE"}, {"unexpected-file", "archive B, Panorama.EXE"}}},
    {"name out of order", Renamed("kwa.bmp", "dwa.bmp"),
     {{"order", "archive B, dwa.bmp", kWarning}, {"unexpected-file", "archive B, dwa.bmp"},
      {"not-used", "archive B, dwa.bmp", kWarning}}},
    {"size", Installer([](InstallerImage& image) { image.SetWord(image.Find("eula_en.txt").entryPosition + 260, 4004); }),
     {{"size", "archive B, eula_en.txt"}, {"line-ends", "archive B, eula_en.txt", kWarning}}},
    {"driver of the wrong machine", InHeader(4, "\x4C\x01", "marlin_usb_64.sys"),
     {{"kind", "archive A, marlin_usb_64.sys"}, {"driver-machine", "archive A, marlin_usb_64.sys"}}},
    {"bitmap of other geometry", InBody("kwa.bmp", 18, "2"),
     {{"kind", "archive B, kwa.bmp"}, {"companion-kind", "archive B, kwa.bmp"}}},
    {"missing, without a list", Unlisted(Renamed("eula_de.txt", "eula_da.txt")), 
     {{"missing-file", "eula_de.txt"}, {"not-used", "archive B, eula_da.txt", kWarning}}},
    {"wrong machine, without a list", Unlisted(InHeader(4, "\x4C\x01", "dpinst64.exe")), {{"companion-kind", "archive B, dpinst64.exe"}}},
    {"DPInst without a signature", Unlisted(InHeader(152, std::string(8, '\0'), "dpinst.exe")), {{"dpinst-unsigned", "archive B, dpinst.exe"}}},
    {"a configuration", Unlisted(Renamed("kwa.bmp", "DPINST.XML")),
     {{"order", "archive B, DPINST.XML", kWarning}, {"missing-file", "kwa.bmp"}, {"dpinst-xml-carried", "archive B, DPINST.XML"},
      {"not-used", "archive B, DPINST.XML", kWarning}}},
    {"line ends", Unlisted(InBody("eula_en.txt", 3, "\n")), {{"line-ends", "archive B, eula_en.txt", kWarning}}},
    {"licence text, without a list", Unlisted(InBody("eula_en.txt", 100, "\xFF")), {{"not-utf8", "archive B, eula_en.txt"}}},

    // The INF.
    {"no INF", Unlisted(Renamed("marlin_usb.inf", "marlin_usb.inx")), {{"no-inf", "package"}}},
    {"second INF", Package({}, [](PackageFiles& files) { files["b.info"] = ""; }),
     {{"second-inf", kPackage}, {"not-used", "b.info", kWarning}}},
    {"no version", InInf("DriverVer ", "DriverVex "), {{"version-key-missing", kInf}}},
    {"no catalog", Package({{"CatalogFile", "CatalogFile.ntia64"}}),
     {{"version-key-missing", kPackage}, {"not-used", "a.cat", kWarning}}},
    {"a catalog of one platform", Package({{"CatalogFile", "CatalogFile.ntx86"}}), {{"version-key-missing", kPackage}}},
    {"no such date", InInf("02/13/2014,1.0.42.0", "02/30/2014,1.0.42.1"), {{"driver-ver", kInf}}},
    {"version other than the drivers'", InInf("02/13/2014,1.0.42.0", "02/13/2014,1.0.42.1"),
     {{"driver-version", "archive A, marlin_usb.sys", kWarning},
      {"driver-version", "archive A, marlin_usb_64.sys", kWarning}}},
    {"ampersand", InInf("= \"Marlin USB\"", "= \"Marlin&USB\""), {{"value-breaks-xml", kInf}}},
    {"end of CDATA", InInf("= \"Marlin USB\"", "= \"Marli]]>SB\""), {{"value-breaks-xml", kInf}}},
    // Neither a control character nor such a byte is in a 7-bit text.
    {"control character", InInf("= \"Marlin USB\"", "= \"Marlin\x01USB\""),
     {{"kind", "archive A, marlin_usb.inf"}, {"value-breaks-xml", kInf}}},
    {"umlaut", InInf("Name = \"Marlin", "Name = \"Marl\xEFn"),
     {{"kind", "archive A, marlin_usb.inf"}, {"value-breaks-xml", kInf}}},
    {"byte-order mark", InBody("marlin_usb.inf", 0, "\xEF\xBB\xBF"),
     {{"kind", "archive A, marlin_usb.inf"}, {"inf-encoding", kInf}}},
    {"long name", Package({{"Marlin USB", "Marlin USB" + std::string(250, '.')}}), {{"value-too-long", kPackage}}},
    {"longest name", Package({{"Marlin USB", "Marlin USB" + std::string(249, '.')}}), {}},
    {"no family", InInf("= \"Marlin USB\"", "= \"Heron XYZ!\""), {{"no-family", kInf}}},
    {"catalog", InInf("marlin_usb.cat", "marlin_usc.cat"),
     {{"catalog-missing", kInf}, {"not-used", "archive A, marlin_usb.cat", kWarning}}},
    {"source file", InInf("marlin_usb.sys = 1", "marlin_usc.sys = 1"),
     {{"source-file-missing", kInf}, {"copied-file-not-listed", "package, marlin_usb.inf, line 48"}}},
    {"folder of a file", Package({{"a.sys=1", "a.sys=1,amd64"}}), {{"source-file-in-folder", kPackage}}},
    {"folder of a disk", Package({{"1=Disk", "1=\"d,e\",,,\\x"}}), {{"source-file-in-folder", kPackage}}},
    {"no source files", Package({{"[SourceDisksFiles]", "[SourceDisksFilez]"}}),
     {{"no-source-files", kPackage}, {"copied-file-not-listed", "package, a.inf, line 19"}}},

    {"disk", Package({{"1=Disk", "2=Disk"}}), {{"disk-missing", kPackage}}},
    {"copied file that is not listed", Package({{"=Files", "=Files,@b.sys"}},
                                              [](PackageFiles& files) { files["b.sys"] = ""; }),
     {{"copied-file-not-listed", "package, a.inf, line 17"}}},
    {"copied file that may be Windows' own", Package({{"=Files", "=Files,@b.sys"}}),
     {{"copied-file-not-listed", "package, a.inf, line 17", kWarning}}},
    {"unused file", Package({}, [](PackageFiles& files) { files["x.txt"] = ""; }), {{"not-used", "x.txt", kWarning}}},
    {"signature of the INF", Package({{"$Windows NT$", "$Windows NG$"}}), {{"inf-signature", "package, a.inf, line 2"}}},

    // Catalogs and signatures.
    {"none, in a package", Package({}), {}},
    {"rebuilt driver", Package({}, [](PackageFiles& files) { files["a.sys"] = "rebuilt"; }), {{"not-in-catalog", "a.sys"}}},
    {"driver in one of two catalogs",
     Package({{"CatalogFile=a.cat", "CatalogFile.ntx86=a.cat\nCatalogFile.ntamd64=b.cat"}},
             [](PackageFiles& files) { files["b.cat"] = CatalogOf({files["a.inf"]}); }), {{"not-in-catalog", "a.sys"}}},
    {"a driver that only one platform lists",
     Package({{"CatalogFile=a.cat", "CatalogFile.ntx86=a.cat\nCatalogFile.ntamd64=b.cat"}, {"DisksFiles]", "DisksFiles.x86]"}},
             [](PackageFiles& files) { files["b.cat"] = CatalogOf({files["a.inf"]}); }),
     {{"copied-file-not-listed", "package, a.inf, line 20"}}},
    {"damaged catalog", Package({}, [](PackageFiles& files) { files["a.cat"].resize(100); }), {{"catalog-unreadable", "a.cat"}}},
    {"unsigned catalog", Package({}, [](PackageFiles& files) { files["a.cat"] = CatalogOf({files["a.inf"], "driver"}, 0); }),
     {{"catalog-unsigned", "a.cat"}}},
    {"broken catalog", Package({}, [](PackageFiles& files) { files["a.cat"].back() ^= 1; }), {{"catalog-signature-broken", "a.cat"}}},
    {"timestamp of another signature", Package({}, [](PackageFiles& files) {
       files["a.cat"] = CatalogOf({files["a.inf"], "driver"}, 1, [](const std::string&) { return TimestampToken("other"); });
     }), {{"timestamp-broken", "a.cat", kWarning}}},
    {"catalog of other files", Package({}, [](PackageFiles& files) { files["a.cat"] = CatalogOf({"other"}); }),
     {{"catalog-of-other-files", "a.cat", kWarning}, {"not-in-catalog", "a.inf"}, {"not-in-catalog", "a.sys"}}},
    {"signature of a program", Package({}, [](PackageFiles& files) { files["p.exe"] = WithTable(Program(), "x"); }),
     {{"not-used", "p.exe", kWarning}, {"signature-broken", "p.exe"}}},

    // The program.
    {"machine", InHeader(4, "\x64\x86"), {{"machine", "executable"}}},
    {"console", InHeader(92, "\x03"), {{"subsystem", "executable"}}},
    {"none, Windows 2000", InHeader(72, "\x05"), {}},
    {"later Windows", InHeader(72, "\x06"), {{"windows-version", "executable"}}},
    {"library", InHeader(23, "\x23"), {{"not-a-program", "executable"}}},
    {"ASLR", InHeader(94, std::string("\0\x81", 2)), {{"no-aslr", "executable"}}},
    {"relocations", InHeader(160, std::string(8, '\0')), {{"no-relocations", "executable"}}},
    {"DEP", InHeader(94, "\x40\x80"), {{"no-dep", "executable"}}},
    {"terminal server", InHeader(94, "\x40\x01"), {{"not-terminal-server-aware", "executable", kWarning}}},
    {"writable code", InHeader(248 + 39, "\xE0"), {{"writable-code", "executable, section .text"}}},
    {"section alignment", InHeader(56, WordBytes(0x3000)), {{"alignment", "executable"}}},
    {"file alignment", InHeader(60, WordBytes(0x20000)), {{"alignment", "executable"}}},
    {"image base", InHeader(52, WordBytes(0x401000)), {{"image-base", "executable"}}},
    {"size of the image", InHeader(80, WordBytes(0x10000)), {{"image-size", "executable"}}},
    {"section that overlaps", InHeader(248 + 40 + 12, WordBytes(0x1000)), {{"section-place", "executable"}}},
    {"entry point", InHeader(40, WordBytes(0x10)), {{"entry-point", "executable"}}},
    {"number of the manifest", InResources(24, ResourceNumber::Name, 2), {{"manifest", "executable, manifest"}}},
    {"no manifest", InResources(24, ResourceNumber::Type, 23), {{"no-manifest", "executable"}}},
    {"manifest", InProgram("requireAdministrator", "requireAdministrat0r"), {{"manifest", "executable, manifest"}}},
    {"no version record", InResources(16, ResourceNumber::Type, 15), {{"no-version", "executable"}}},
    {"version record", InProgram(Utf16("VS_VERSION_INFO"), Utf16("VS_VERSION_INFX")), {{"version-damaged", "executable"}}},
    // The number is 16 bytes after the signature of the fixed part.
    {"product version",
     Installer([](InstallerImage& image) { image.SetText(image.Bytes().rfind("\xBD\x04\xEF\xFE", image.A()) + 18, "\x02"); }),
     {{"versions-differ", "executable, version record"}}},
    {"version text", InProgram(kVersionText + Utf16("1.0"), kVersionText + Utf16("1.") + Utf16({0})),
     {{"versions-differ", "executable, version record"}}},
    {"import table", InHeader(128, WordBytes(0x70000000)), {{"imports-damaged", "executable"}}},
    {"library", InProgram("SHELL32.dll", "SHELL33.dll"), {{"library-not-allowed", "executable, imports of SHELL33.dll"}}},
    {"later function", InProgram("GetVersionExA", "GetVersionExB"), {{"import-too-new", "executable, imports of KERNEL32.dll"}}},
    {"bytes at the end", Installer([](InstallerImage& image) { image.Resize(image.Bytes().size() + 100); }),
     {{"overlay", "executable", kWarning}}},
    {"signature", WithSignature(0), {{"signature-broken", "executable"}}},
    {"signature after padding", WithSignature(8), {{"signature-broken", "executable"}, {"overlay", "executable", kWarning}}},
    {"signature in an odd place", WithSignature(4), {{"signature-broken", "executable"}, {"signature-place", "executable"}}},
};
// clang-format on

std::string Line(const std::string& code, std::string where, kwa::Severity severity) {
  if (where.rfind(kArchive, 0) == 0) {
    where = kArchive;
  }
  return (severity == kwa::Severity::Error ? "" : "warning ") + code + ": " + where;
}

TEST(Verify, EachFaultGivesItsFindingsAndNoOthers) {
  const std::string list = ReadWholeFile(KWA_CONTENTS);
  const kwa::PayloadContents contents = kwa::ReadPayloadContents(kwa::ByteSpan(list)).value();
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.fault);
    const std::string bytes = row.file.make();
    const kwa::InstallerFile installer = kwa::ReadInstallerFile(kwa::ByteSpan(bytes)).value();
    std::vector<std::string> found;
    const kwa::PayloadContents none;
    for (const kwa::Finding& finding :
         kwa::VerifyInstaller(installer, installer.image && row.file.isListed ? contents : none).findings) {
      // Every change of a file of the payload breaks what signs it.
      const bool isConsequence = installer.image &&
                                 (finding.code == "not-in-catalog" || finding.code == "signature-broken") &&
                                 finding.where != "executable";
      if (!isConsequence) {
        found.push_back(Line(finding.code, finding.where, finding.severity));
        EXPECT_NE(finding.what, "");
      }
    }
    std::vector<std::string> expected;
    for (const Found& finding : row.findings) {
      expected.push_back(Line(finding.code, finding.where, finding.severity));
    }
    EXPECT_EQ(expected, found);
  }
}

}  // namespace
