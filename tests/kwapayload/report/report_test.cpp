// Reports of hand-made files: the facts in them, and that no text of a file reaches a terminal or a document raw.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

#include "built_archive.h"
#include "pe/built_image.h"
#include "pe/pe_resources.h"
#include "report/bill_of_materials.h"
#include "report/json_report.h"
#include "report/list_report.h"
#include "report/text_report.h"
#include "verify/faulty_file.h"
#include "verify/verification.h"

namespace {

using nlohmann::json;

// SHA-256 of "abc" and of no bytes, from FIPS 180-4 and its examples.
const char kDigestOfAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
const char kDigestOfNothing[] = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";

const std::string kInf = "[Version]\r\nDriverVer=1,2\r\nDriverPackageDisplayName=\"Vireo One\"\r\n";

std::string DriverImage(const std::map<std::string, std::string>& texts) {
  return BuildResourceImage(kwa::kResourceTypeVersion, BuildVersionRecord(texts));
}

// An installer with sections of this data, of which the first comes last in the table of sections.
std::string InstallerOf(const std::vector<std::string>& readOnlyData, const char* firstName = ".rdata") {
  BuiltImage image;
  image.sections = {{".data", kWritableData, BuildArchive({{"writable", "1"}})}};
  for (const std::string& data : readOnlyData) {
    image.sections.push_back({image.sections.size() == 1 ? firstName : ".rdata", kReadOnlyData, data});
  }
  std::string bytes = BuildImage(image);
  const std::size_t first = bytes.find(".data") + 40;
  const std::size_t last = bytes.find(".data") + 40 * readOnlyData.size();
  const std::string header = bytes.substr(first, 40);
  bytes.replace(first, 40, bytes.substr(last, 40));
  return bytes.replace(last, 40, header);
}

const std::string kDriver = DriverImage({{"CompanyName", "KWA"}, {"FileDescription", "Driver"}});
const std::string kArchiveA = BuildArchive({{"driver.inf", kInf}, {"driver.sys", kDriver}, {"empty", ""}});
const std::string kArchiveB = BuildArchive({{"abc.txt", "abc"}, {"DPInst.exe", "MZ"}});

// Points into the bytes.
kwa::Inspection Inspection(const std::string& bytes) {
  return kwa::Inspect(kwa::ReadInstallerFile(kwa::ByteSpan(bytes)).value());
}

void ExpectPart(const std::string& text, const std::string& part) {
  EXPECT_NE(std::string::npos, text.find(part)) << text;
}

void ExpectFields(const json& object, const char* fields) {
  const json expected = json::parse(fields);
  for (const auto& [key, value] : expected.items()) {
    EXPECT_EQ(value, object.value(key, json("missing"))) << key;
  }
}

TEST(Report, ListOfAnInstaller) {
  const std::string bytes = InstallerOf({kArchiveA, kArchiveB});
  const kwa::Inspection inspection = Inspection(bytes);
  const std::string text = kwa::ListText("a.exe", inspection, 0);
  ExpectPart(text,
             "ARCHIVE  NAME        SIZE  VERSION  CATALOG  KIND\n"
             "A        driver.inf    64                    7-bit ASCII text, CR LF line ends\n"
             "A        driver.sys   848  1.2.3.4           PE32, x86, Windows GUI program\n");
  ExpectPart(text, "\nPackage:           driver.inf\nVersion:           1,2\nDisplay name:      Vireo One\n");
  ExpectPart(text, "\nDevices:           Vireo Series (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), Vireoe ");
  ExpectPart(text, "\nDevices (German):  Vireo Serie (");

  std::istringstream lines(kwa::ListText("a.exe" + std::string(100, ' '), inspection, 80));
  for (std::string line; std::getline(lines, line);) {
    EXPECT_LE(line.size(), 80U) << line;
  }

  const json list = json::parse(kwa::ListJson("a.exe", inspection));
  ASSERT_EQ(5U, list["files"].size());
  EXPECT_EQ(true, list["installer"]);
  EXPECT_EQ(kDriver, bytes.substr(list["files"][1]["fileOffset"], list["files"][1]["size"]));
  ExpectFields(list["files"][1], R"({"archive": "A", "name": "driver.sys", "kind": "PE32, x86, Windows GUI program",
      "version": "1.2.3.4", "description": "Driver", "company": "KWA", "inCatalog": null, "catalog": null})");
  ExpectFields(list["files"][3], R"({"archive": "B", "name": "abc.txt", "position": 536, "size": 3, "version": null,
      "kind": "7-bit ASCII text, no line ends", "description": null, "company": null})");
  EXPECT_EQ(kDigestOfAbc, list["files"][3]["sha256"]);
  EXPECT_EQ(kDigestOfNothing, list["files"][2]["sha256"]);
  ExpectFields(list["package"], R"({"inf": "driver.inf", "version": "1,2", "displayName": "Vireo One",
      "family": "Vireo"})");
  EXPECT_EQ("Vireoe Serie (Y2", list["package"]["germanDevices"][7]);
  const json inArchive = json::parse(kwa::ListJson("", Inspection(kArchiveA)))["files"][1];
  EXPECT_EQ(inArchive["position"], inArchive["fileOffset"]);
}

TEST(Report, BillOfMaterials) {
  const std::string bytes = InstallerOf({kArchiveA, kArchiveB});
  const auto bill = [](const std::string& name, const std::string& file) {
    return json::parse(kwa::BillOfMaterials(name, Inspection(file)));
  };
  const json document = bill("a.exe", bytes);
  ExpectFields(document, R"({"bomFormat": "CycloneDX", "specVersion": "1.6", "version": 1})");
  ExpectFields(document["metadata"]["component"], R"({"type": "application", "name": "a.exe", "version": "missing"})");
  EXPECT_EQ(document["metadata"]["component"]["hashes"][0]["content"],
            json::parse(kwa::ListJson("", Inspection(bytes)))["file"]["sha256"]);
  ExpectFields(document["components"][3], R"({"type": "file", "name": "abc.txt", "supplier": "missing", "properties": [
      {"name": "kwapayload:archive", "value": "B"}, {"name": "kwapayload:size", "value": "3"},
      {"name": "kwapayload:kind", "value": "7-bit ASCII text, no line ends"}]})");
  EXPECT_EQ(document["components"][3]["hashes"], (json{{{"alg", "SHA-256"}, {"content", kDigestOfAbc}}}));
  ExpectFields(document["components"][1], R"({"type": "application", "name": "driver.sys", "version": "1.2.3.4",
      "supplier": {"name": "KWA"}, "description": "Driver"})");
  ExpectFields(document["components"][4], R"({"name": "DPInst.exe", "supplier": "missing"})");  // unsigned
  // The number is that of name and content.
  std::set<json> numbers;
  for (const json& one : {document, bill("a.exe", bytes), bill("b.exe", bytes), bill("a.exe", kArchiveA)}) {
    numbers.insert(one["serialNumber"]);
  }
  EXPECT_EQ(3U, numbers.size());
  EXPECT_TRUE(std::regex_match(document["serialNumber"].get<std::string>(),
                               std::regex("urn:uuid:.{8}-.{4}-8.{3}-[89ab].{3}-.{12}")));
}

// Escape, DEL, a C1 control, an override of the direction, and a byte that is not UTF-8.
const std::string kUnsafe = "\x1B[2J\x7F\xC2\x9B\xE2\x80\xAE\xFF\\";
const std::string kUnsafeName = kUnsafe.substr(4);  // archives with controls in names are not sound
const std::string kEscapedName = R"(\x7F\xC2\x9B\xE2\x80\xAE\xFF\\)";
const std::string kEscaped = R"(\x1B[2J)" + kEscapedName;

// What the reports say about a file with such texts wherever a file can have them.
std::string UnsafeFile(char tag) {
  const std::string unsafe = tag + kUnsafe;
  // UTF-16 cannot hold a byte that is not UTF-8.
  const std::string record = kUnsafe.substr(0, kUnsafe.size() - 2);
  std::string catalog = CatalogOf({"other"});
  for (std::size_t at = 0; (at = catalog.find("Tester", at)) != std::string::npos;) {
    catalog.replace(at, 6, tag + std::string("\x1B\x7F\xC2\x9Bz"));
  }
  return InstallerOf(
      {BuildArchive(
           {{"a" + kUnsafeName + ".inf", "[Version]\r\nSignature=\"$Chicago$\"\r\nCatalogFile=c.cat\r\nDriverVer=" +
                                             unsafe + "\r\nDriverPackageDisplayName=Vireo" + unsafe + "\r\n"},
            {"same" + kUnsafeName, std::string(1, tag)},
            {std::string(1, tag) + kUnsafeName, DriverImage({{"FileDescription", record}, {"CompanyName", record}})},
            {"c.cat", catalog},
            {(tag == '1' ? "renamed" : "RENAMED") + kUnsafeName, ""}}),
       BuildArchive({{"b", "b"}})},
      tag == '2' ? "\x1B\x7F\xC2\x9B" : ".rdata");
}

// JSON has a raw control as \\u.
void ExpectClean(const std::string& text) {
  EXPECT_TRUE(kwa::IsUtf8(kwa::ByteSpan(text))) << text;
  for (const char* const raw : {"\x1B", "\x7F", "\xC2\x9B", "\xE2\x80\xAE", "\r", "\\u"}) {
    EXPECT_EQ(std::string::npos, text.find(raw)) << text;
  }
}

TEST(Report, NoTextOfAFileIsShownRaw) {
  const std::string bytes = UnsafeFile('1');
  const std::string otherBytes = UnsafeFile('2');
  const kwa::Inspection inspection = Inspection(bytes);
  const kwa::Inspection other = Inspection(otherBytes);
  kwa::Verification verification = kwa::VerifyInstaller(inspection.installer, {});
  verification.findings.AddError("where" + kUnsafe, "what" + kUnsafe, "code");
  const kwa::Comparison comparison = kwa::Compare(inspection, other);
  const std::string name = "a" + kUnsafe;
  const std::pair<std::string, std::size_t> reports[] = {
      // and how many unsafe texts are in them at least
      {kwa::ListText(name, inspection, 0), 9},
      {kwa::ListJson(name, inspection), 11},
      {kwa::BillOfMaterials(name, inspection), 8},
      {kwa::CompareText(comparison), 20},
      {kwa::CompareJson(comparison), 20},
      {kwa::VerifyText(name, verification) + kwa::VerifyText(name, {}), 13},
      {kwa::VerifyJson(name, verification), 13},
  };
  for (const auto& [report, count] : reports) {
    ExpectClean(report);
    std::size_t found = 0;
    for (std::size_t at = 0; (at = report.find("x7F", at)) != std::string::npos; ++at) {
      ++found;
    }
    EXPECT_LE(count, found) << report;
  }
  ExpectPart(reports[0].first, "Vireo1" + kEscaped + "\n");
  ExpectPart(reports[0].first, "same" + kEscapedName);
}

}  // namespace
