// The reports of files with hostile texts wherever a file can have them, compared with those in expected/.

#include <gtest/gtest.h>
#include <utf8.h>

#include <algorithm>
#include <iterator>

#include "built_archive.h"
#include "pe/built_image.h"
#include "pe/pe_resources.h"
#include "report/bill_of_materials.h"
#include "report/escaped_text.h"
#include "report/json_report.h"
#include "report/list_report.h"
#include "report/text_report.h"
#include "report/words.h"
#include "temporary_folder.h"
#include "verify/verification.h"

namespace {

// Escape, DEL, a C1 control, an override of the direction, and a byte that is not UTF-8.
const std::string kUnsafe = "\x1B[2J\x7F\xC2\x9B\xE2\x80\xAE\xFF\\";
const std::string kUnsafeName = kUnsafe.substr(4);                      // archives with controls in names are not sound
const std::string kUnsafeUtf8 = kUnsafe.substr(0, kUnsafe.size() - 2);  // UTF-16 cannot hold a byte that is not UTF-8

std::string Inf(const std::string& day, const std::string& unsafe) {
  const std::string windows = "NTamd64." + unsafe;
  std::string inf = "[Version]\nSignature=\"$Chicago$\"\nCatalogFile=c.cat\nDriverVer=01/" + day + "/2020,1 ;" +
                    unsafe + "\nDriverPackageDisplayName=Vireo" + unsafe + ".\n[Manufacturer]\nk=M," + windows +
                    ",NTx86\n[M.NTx86]\nd=I,x" + day + "\n[M." + windows + "]\n";
  for (int i = 0; i < 11; ++i) {
    inf += "d=I," + unsafe + std::to_string(i) + "\n";
  }
  return inf;
}

// Two states of an installer. The archive in writable data is none of its own.
std::string Installer(bool isOld) {
  const std::string tag = isOld ? "1" : "2";
  const std::string unsafe = tag + kUnsafe;
  std::string catalog = ReadWholeFile(KWA_SOURCES "/tests/fuzz/corpus/signed_catalog");
  // The signers' names, and a Windows version in UTF-16.
  ReplaceAll(catalog, "Tester", tag + "\x1B\x7F\xC2\x9Bz");
  ReplaceAll(catalog, {"2\0:", 3}, {"\x1B\0\x7F", 3});
  const std::string version = BuildVersionRecord({{"FileDescription", tag + kUnsafeUtf8},
                                                  {"CompanyName", tag + kUnsafeUtf8},
                                                  {"Configuration", tag + kUnsafeUtf8}});
  BuiltImage driver;
  AddResource(kwa::kResourceTypeVersion, version, driver);
  std::vector<ArchiveBody> bodies = {{"abc.txt", "abc"}, {"b", ""}, {isOld ? "a" : "DPInst.exe", BuildImage(driver)}};
  if (!isOld) {
    std::swap(bodies[0], bodies[1]);
  }
  BuiltImage image;
  image.sections = {{".data", kWritableData, BuildArchive({{"writable", "1"}})},
                    {isOld ? ".rdata" : "\x1B\x7F\xC2\x9B", kReadOnlyData,
                     BuildArchive({{"a" + kUnsafeName + ".inf", Inf(isOld ? "02" : "01", unsafe)},
                                   {"same" + kUnsafeName, tag + "\nin both\n"},
                                   {tag + kUnsafeName, BuildImage(driver)},
                                   {"c.cat", catalog},
                                   {(isOld ? "renamed" : "RENAMED") + kUnsafeName, isOld ? "" : "\r\n"}})},
                    {".rdata", kReadOnlyData, BuildArchive(bodies)}};
  AddResource(kwa::kResourceTypeVersion, version, image);
  std::string bytes = BuildImage(image);
  // The order of the table of sections is not that of the archives.
  const auto table = bytes.begin() + static_cast<std::ptrdiff_t>(bytes.find(".data"));
  std::swap_ranges(table + 40, table + 80, table + 80);
  return bytes;
}

TEST(Report, IsTheExpectedOneWithoutARawText) {
  const std::string files[] = {Installer(true), Installer(false), BuildArchive({{"abc.txt", "abc"}, {"empty", ""}})};
  std::vector<kwa::Inspection> inspections;
  for (const std::string& file : files) {
    inspections.push_back(kwa::Inspect(kwa::ReadInstallerFile(kwa::ByteSpan(file)).value()));
  }
  const kwa::Inspection& old = inspections[0];
  kwa::Verification verification = {{}, old.files[3].trust.signatures};
  verification.findings.AddError("where" + kUnsafe, "what" + kUnsafe, "code");
  verification.findings.AddWarning("", "something", "other-code");
  kwa::Comparison comparison = kwa::Compare(old, inspections[1]);
  // There are many more, one or two in each language.
  comparison.configuration = {comparison.configuration.at(0), comparison.configuration.at(1),
                              comparison.configuration[0]};
  const std::string name = "a" + kUnsafe;
  const std::pair<const char*, std::string> reports[] = {
      {"list.txt", kwa::ListText(name, old, 0)},
      {"list_80.txt", kwa::ListText(name, old, 80)},
      {"list.json", kwa::ListJson(name, old)},
      {"list_archive.txt", kwa::ListText(name, inspections[2], 0)},
      {"list_archive.json", kwa::ListJson(name, inspections[2])},
      {"bill.json", kwa::BillOfMaterials(name, inspections[1])},
      {"compare.txt", kwa::CompareText(comparison)},
      {"compare.json", kwa::CompareJson(comparison)},
      {"verify.txt", kwa::VerifyText(name, verification)},
      {"verify.json", kwa::VerifyJson(name, verification)},
  };
  for (const auto& [file, report] : reports) {
    const std::string expected = KWA_SOURCES "/tests/kwapayload/report/expected/" + std::string(file);
    if (!std::filesystem::exists(expected) || report != ReadWholeFile(expected)) {
      WriteWholeFile(file, report);
      ADD_FAILURE() << "not the expected report: compare " << expected << " with "
                    << std::filesystem::absolute(file).string();
    }
    EXPECT_TRUE(kwa::IsUtf8(kwa::ByteSpan(report))) << file;
    // JSON has a raw control as \\u.
    for (const char* const raw : {"\x1B", "\x7F", "\xC2\x9B", "\xE2\x80\xAE", "\r", "\\u"}) {
      EXPECT_EQ(report.find(raw), std::string::npos) << file;
    }
  }
}

TEST(Escaped, IsASafeTextForEachCodePointThatIsNot) {
  constexpr std::uint32_t kSurrogates = 0xD800;
  std::size_t escapedCount = 0;
  for (std::uint32_t character = 0; character <= 0x10FFFF; character += character + 1 == kSurrogates ? 0x801 : 1) {
    std::string text;
    utf8::append(character, std::back_inserter(text));
    escapedCount += kwa::Escaped(text) == text ? 0 : 1;
  }
  const std::size_t controls = 32 + 33;
  const std::size_t invisibleOrBidirectional = 1 + 5 + 7 + 16 + 1 + 3 + 128;
  EXPECT_EQ(controls + invisibleOrBidirectional, escapedCount);
}

// The catalog of only one of two packages can be the same file in both.
TEST(Report, ASignerWithoutANameIsAChange) {
  kwa::InspectedFile before = {};
  kwa::InspectedFile after = {};
  after.trust.signatures = {{"", {}, false, {}}};
  const std::vector<kwa::Change> changes = kwa::FileChanges({&before, &after});
  ASSERT_EQ(1U, changes.size());
  EXPECT_EQ("a signer without a name", changes[0].after);
}

}  // namespace
