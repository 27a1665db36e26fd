// What a new driver version asks for: its list of contents, its version, what has changed, and a bill of materials.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <regex>

#include "built_archive.h"
#include "built_image.h"
#include "installer/comparison.h"
#include "installer_image.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

kwa::InstallerFile Read(const std::string& bytes) {
  return kwa::ReadSoundInstallerFile(kwa::ByteSpan{std::string_view(bytes)}, "file");
}

TEST(Contents, OfTheSampleAreTheCommittedList) {
  const TemporaryFolder folder;
  const std::string committed = ReadWholeFile(KWA_CONTENTS);
  EXPECT_EQ(RunTool({"contents", KWA_PAYLOAD_DIR}).output, committed);
  EXPECT_EQ(RunTool({"contents", KWA_PAYLOAD_DIR, "--output", folder / "list"}).status, 0);
  EXPECT_EQ(ReadWholeFile(folder / "list"), committed);
}

TEST(Contents, RefusesANameOfBothFolders) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "a/one", "");
  WriteWholeFile(folder / "b/ONE", "");
  ExpectFailure(RunTool({"contents", folder.Path(), "--output", folder / "list"}), folder.Path(),
                {"b/ONE: is to Windows the same name as " + (folder / "a/one")});
  EXPECT_EQ(NamesIn(folder.Path()), (std::vector<std::string>{"a", "b"}));
}

TEST(Compare, PrintsDifferencesAndNothingElse) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "old", BuildArchive({{"changed", "a"}, {"gone", "1"}, {"longer", "1"}, {"same", ""}}));
  WriteWholeFile(folder / "new", BuildArchive({{"changed", "b"}, {"LONGER", "12"}, {"more", "\r\n"}, {"same", ""}}));
  InstallerImage image;
  image.SetText(image.Bytes().find("\"Marlin USB\"", image.Find("marlin_usb.inf").bodyPosition), "\"Vireo +USB\"");
  image.SetText(image.Bytes().find("02/13/2014", image.Find("marlin_usb.inf").bodyPosition), "03/01/2014,1.0.43.0");
  WriteWholeFile(folder / "next.exe", image.Bytes());
  const struct {
    std::string before, after;
    int status;
    std::string output;
  } cases[] = {
      {folder / "old", folder / "old", 0, ""},
      {folder / "old", folder / "new", 1,
       "removed: gone: archive -, 1 bytes, 7-bit ASCII text, no line ends\n"
       "added: more: archive -, 2 bytes, 7-bit ASCII text, CR LF line ends\n"
       "changed: changed: content alone\nchanged: LONGER: name longer -> LONGER; size 1 -> 2\n"},
      {KWA_INSTALLER, folder / "next.exe", 1,
       "changed: marlin_usb.inf: in the catalog yes -> NO\n"
       "package: version 02/13/2014,1.0.42.0 -> 03/01/2014,1.0.43.0; display name Marlin USB -> Vireo +USB\n"
       "dpinst.xml, 24 times:\n"
       "  -    <welcomeTitle>Welcome to the KWA Marlin USB Driver Installer Wizard </welcomeTitle>\n"
       "  +    <welcomeTitle>Welcome to the KWA Vireo +USB Driver Installer Wizard </welcomeTitle>\n"
       "dpinst.xml, 25 times:\n  -02/13/2014,1.0.42.0\n  +03/01/2014,1.0.43.0\n"
       "dpinst.xml:\n"
       "  -    <welcomeTitle>Willkommen beim KWA Marlin USB Driver Installer Wizard </welcomeTitle>\n"
       "  +    <welcomeTitle>Willkommen beim KWA Vireo +USB Driver Installer Wizard </welcomeTitle>\n"},
      {folder / "old", folder / "none", 2, ""},
      {folder / "old", "--json", 2, ""},
  };
  for (const auto& test : cases) {
    const ToolRun run = RunTool({"compare", test.before, test.after});
    EXPECT_EQ(run.status, test.status) << run.errors;
    EXPECT_EQ(run.output, test.output);
  }
  const auto document = nlohmann::json::parse(RunTool({"compare", "--json", folder / "old", folder / "new"}).output);
  EXPECT_EQ(document["alike"], false);
  EXPECT_EQ(document["added"][0]["kind"], "7-bit ASCII text, CR LF line ends");
  EXPECT_EQ(document["changed"][1]["changes"][1], (nlohmann::json{{"what", "size"}, {"before", "1"}, {"after", "2"}}));
}

// A program whose code points, as does its data before the archives, at the section behind them.
std::string SmallProgram(std::size_t payloadSize, const std::string& code, const std::string& constant) {
  const auto shift = static_cast<std::uint32_t>(payloadSize / 0x1000 * 0x1000);
  BuiltImage image;
  const std::string pointer = WordBytes(0x400000 + SectionAddress(2) + shift);
  std::string relocations;
  for (const std::uint32_t section : {0, 1}) {
    relocations += WordBytes(SectionAddress(section)) + WordBytes(10) + std::string("\0\x30", 2);
  }
  const std::string archives = BuildArchive({{"a", std::string(payloadSize, 'a')}}) + BuildArchive({{"b", "b"}});
  image.sections = {{".text", kCode, pointer + code},
                    {".rdata", kReadOnlyData, pointer + archives + std::string(payloadSize % 2, '\0') + constant},
                    {".reloc", 0x42000040, relocations}};
  image.directories.resize(16);
  image.directories[kwa::kPeBaseRelocationDirectory] = {SectionAddress(2) + shift, 20};
  std::string bytes = BuildImage(image);
  PutWord(bytes, bytes.find(".reloc") + 12, SectionAddress(2) + shift);
  return bytes;
}

TEST(Compare, KnowsAProgramAroundAnotherPayload) {
  const std::string constant("x\1\0\0", 4);
  const std::string program = SmallProgram(8, "\xC3", constant);
  std::string console = program;
  console[kwa::ByteSpan(console).U32(0x3C) + 92] = 3;
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {SmallProgram(5001, "\xC3", constant), {}},
      {SmallProgram(5001, std::string("\0\xC3", 2), constant), {".text"}},
      {SmallProgram(8, "\xC3", std::string("x\0\1\0", 4)), {".rdata"}},
      {console, {"headers"}},
  };
  for (const auto& [other, parts] : cases) {
    EXPECT_EQ(kwa::CompareInstallers(Read(program), Read(other)).program, parts);
  }
}

TEST(BillOfMaterials, NamesTheInstallerAndWhatItCarries) {
  const ToolRun run = RunTool({"list", "--cyclonedx", KWA_INSTALLER});
  EXPECT_EQ(run.output, RunTool({"list", "--cyclonedx", KWA_INSTALLER}).output);
  const auto bill = nlohmann::json::parse(run.output);
  EXPECT_TRUE(std::regex_match(bill["serialNumber"].get<std::string>(),
                               std::regex("urn:uuid:.{8}-.{4}-8.{3}-[89ab].{3}-.{12}")));
  EXPECT_EQ(bill["metadata"]["component"]["version"], "1.0.0.0");
  const auto listed = nlohmann::json::parse(RunTool({"list", "--json", KWA_INSTALLER}).output);
  ASSERT_EQ(bill["components"].size(), listed["files"].size());
  for (std::size_t i = 0; i < listed["files"].size(); ++i) {
    EXPECT_EQ(bill["components"][i]["hashes"][0]["content"], listed["files"][i]["sha256"]);
  }
  EXPECT_EQ(bill["components"][10]["name"], "dpinst64.exe");
  EXPECT_EQ(bill["components"][10]["supplier"]["name"], "Microsoft Corporation");
  EXPECT_EQ(bill["components"][10]["type"], "application");
  EXPECT_EQ(bill["components"][3]["type"], "device-driver");
  EXPECT_EQ(bill["components"][5]["type"], "library");
  EXPECT_EQ(bill["components"][2]["type"], "file");
  EXPECT_FALSE(bill["components"][2].contains("supplier"));
}

}  // namespace
