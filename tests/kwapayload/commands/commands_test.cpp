// What only the command line does: exit status, options, wording, the lines of an error. Each command once; pack,
// extract and what a shell does have files of their own.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "built_archive.h"
#include "installer_image.h"
#include "pe/built_image.h"
#include "same_text.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

using nlohmann::json;

class Commands : public testing::Test {
 protected:
  std::string MakeFile(const std::string& name, const std::string& bytes) {
    WriteWholeFile(folder / name, bytes);
    return folder / name;
  }

  const TemporaryFolder folder;
};

TEST_F(Commands, ContentsWritesTheList) {
  const std::string committed = ReadWholeFile(KWA_CONTENTS);
  EXPECT_TRUE(SameText(RunTool({"contents", KWA_PAYLOAD_DIR}).output, committed));
  EXPECT_EQ(RunTool({"contents", KWA_PAYLOAD_DIR, "--output", folder / "list"}).status, 0);
  EXPECT_TRUE(SameText(ReadWholeFile(folder / "list"), committed));

  const TemporaryFolder payload;
  WriteWholeFile(payload / "a/one", "");
  WriteWholeFile(payload / "b/ONE", "");
  ExpectFailure(RunTool({"contents", payload.Path(), "--output", payload / "list"}), payload.Path(),
                {"b/ONE: is the same name for Windows as " + (payload / "a/one")});
  EXPECT_EQ(NamesIn(payload.Path()), (std::vector<std::string>{"a", "b"}));
}

TEST_F(Commands, ListWritesAReport) {
  for (const char* const option : {"--json", "--cyclonedx"}) {
    const ToolRun run = RunTool({"list", KWA_INSTALLER, option});
    EXPECT_EQ(0, run.status) << run.errors;
    EXPECT_TRUE(json::accept(run.output)) << run.output;
  }
  const ToolRun run = RunTool({"list", MakeFile("archive", BuildArchive({{"a", "1"}}))});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("", run.errors);
  EXPECT_EQ(
      "ARCHIVE  NAME  SIZE  VERSION  CATALOG  KIND\n"
      "-        a        1                    7-bit ASCII text, no line ends\n\n"
      "File:              archive\n"
      "SHA-256:           652392a35ebc0504828eef1dbfccd0b4a9bcef0cb9bc16d6c21b0704f8603572\n"
      "Package:           none, there is no INF\n",
      run.output);
}

TEST_F(Commands, FilesThatAreNoInstallers) {
  BuiltImage image;
  image.sections = {
      {".rdata", kReadOnlyData, BuildArchive({{"a", "1"}}) + BuildArchive({{"b", std::string(80, 'b')}})}};
  const std::string whole = BuildImage(image);
  const std::string file = MakeFile("file", whole.substr(0, whole.size() - 10));
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"list", file},
                                                    {"extract", file, folder / "out"},
                                                    {"preview", file},
                                                    {"compare", KWA_INSTALLER, file}}) {
    ExpectFailure(RunTool(arguments), folder.Path(),
                  {"file: section .rdata: the file ends 10 bytes before it does",
                   "file: archive at offset " + std::to_string(whole.rfind("KWAP")) +
                       ", b: its body of 80 bytes runs past the end of the data"});
  }
  EXPECT_EQ(std::vector<std::string>{"file"}, NamesIn(folder.Path()));
  ExpectFailure(RunTool({"list", MakeFile("empty", "")}), folder.Path(),
                {"empty: is neither an installer nor a payload archive"});
  ExpectFailure(RunTool({"list", folder / "none"}), folder.Path(), {"none: cannot be read: No such file or directory"});
  ExpectFailure(RunTool({"list", folder.Path() + "/."}), folder.Path(),
                {".: is neither a payload folder with a and b nor the folder of a driver package with an INF"});
}

TEST_F(Commands, Verify) {
  const std::string single = MakeFile("single.kwap", BuildArchive({{"dpinst.exe", "1"}}));
  InstallerImage image;
  image.SetText(image.Find("marlin_usb.cat").bodyPosition + 11519, "x");
  const std::string warned = MakeFile("warned.exe", image.Bytes());
  image.SetText(image.Find("marlin_usb.inf").bodyPosition, "\xEF\xBB\xBF");
  const std::string failed = MakeFile("failed.exe", image.Bytes());
  const std::string warning = "warning: archive A, marlin_usb.cat: the padding after its body is not zero [padding]\n";
  const std::string error =
      "error: package, marlin_usb.inf: begins with the byte-order mark of UTF-8, which not every Windows knows "
      "[inf-encoding]\n";
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string output;
  } cases[] = {
      {{KWA_INSTALLER, "--contents", KWA_CONTENTS}, 0, KWA_INSTALLER ": in order\n"},
      {{warned}, 1, warning},
      {{warned, "--allow-warnings"}, 0, warning},
      {{failed, "--allow-warnings"}, 1, warning + error},
      {{single, "--contents", KWA_CONTENTS, "--archive", "B"},
       1,
       "error: archive B, dpinst.exe: has 1 bytes instead of 921992 [size]\nerror: archive B, dpinst64.exe: is missing "
       "[missing-file]\n"
       "error: archive B, eula_de.txt: is missing [missing-file]\nerror: archive B, eula_en.txt: is missing "
       "[missing-file]\n"
       "error: archive B, kwa.bmp: is missing [missing-file]\n"},
      {{single, "--contents", KWA_CONTENTS}, 2, ""},
      {{MakeFile("text", "text")}, 2, ""},
      {{folder / "missing.exe"}, 2, ""},
      {{warned, "--contents", warned}, 2, ""},
  };
  for (const auto& test : cases) {
    std::vector<std::string> arguments = test.arguments;
    arguments.insert(arguments.begin(), "verify");
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.status, test.status) << testing::PrintToString(test.arguments) << run.errors;
    EXPECT_EQ(run.output, test.output);
    EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), test.output.empty() ? 1 : 0) << run.errors;
  }
  const json document = json::parse(RunTool({"verify", warned, "--json"}).output);
  EXPECT_EQ(document["file"], warned);
  EXPECT_EQ(document["findings"], json::parse(R"([{"severity": "warning", "code": "padding",
      "where": "archive A, marlin_usb.cat", "what": "the padding after its body is not zero"}])"));
  // Where it cannot be known what Windows reads, the preview is a guess.
  const ToolRun preview = RunTool({"preview", failed});
  EXPECT_EQ(preview.status, 1);
  EXPECT_NE(preview.output, "");
  EXPECT_EQ(preview.errors,
            "kwapayload: " + failed +
                ": marlin_usb.inf begins with the byte-order mark of UTF-8, which not every Windows knows: what is "
                "printed is a guess\n");
}

// The Windows tests hold the installer's own writer to the same configuration, and to the preview for many INFs.
TEST_F(Commands, PreviewIsTheExpectedConfiguration) {
  const std::string expected = ReadWholeFile(KWA_EXPECTED_DOCUMENT);
  std::string legacy = expected;
  const std::string flag = "  <forceIfDriverIsNotBetter/>\r\n";
  legacy.insert(legacy.find(flag) + flag.size(), "  <legacyMode/>\r\n");
  const ToolRun run = RunTool({"preview", KWA_INSTALLER});
  EXPECT_EQ(0, run.status);
  EXPECT_TRUE(SameText(run.output + run.errors, expected));
  EXPECT_TRUE(SameText(RunTool({"preview", "--windows", "xp", KWA_INSTALLER}).output, legacy));
}

TEST_F(Commands, ComparePrintsDifferencesAndNothingElse) {
  const std::string old = MakeFile("old", BuildArchive({{"changed", "a"}, {"gone", "1"}, {"longer", "1"}, {"s", ""}}));
  const std::string renewed =
      MakeFile("new", BuildArchive({{"changed", "b"}, {"LONGER", "12"}, {"more", "\r\n"}, {"s", ""}}));
  InstallerImage image;
  const std::size_t inf = image.Find("marlin_usb.inf").bodyPosition;
  image.SetText(image.Bytes().find("\"Marlin USB\"", inf), "\"Vireo +USB\"");
  image.SetText(image.Bytes().find("02/13/2014", inf), "03/01/2014,1.0.43.0");
  const struct {
    std::string before, after;
    int status;
    std::string output;
  } cases[] = {
      {old, old, 0, ""},
      {old, renewed, 1,
       "removed: gone: archive -, 1 bytes, 7-bit ASCII text, no line ends\n"
       "added: more: archive -, 2 bytes, 7-bit ASCII text, CR LF line ends\n"
       "changed: changed: text, lines removed: 1, added: 1\nchanged: LONGER: name longer -> LONGER; size 1 -> 2\n"},
      {KWA_INSTALLER, MakeFile("next.exe", image.Bytes()), 1,
       "changed: marlin_usb.inf: in the catalog yes -> NO\n"
       "package: version 02/13/2014,1.0.42.0 -> 03/01/2014,1.0.43.0; display name Marlin USB -> Vireo +USB\n"
       "dpinst.xml, 24 times:\n"
       "  -    <welcomeTitle>Welcome to the KWA Marlin USB Driver Installer Wizard </welcomeTitle>\n"
       "  +    <welcomeTitle>Welcome to the KWA Vireo +USB Driver Installer Wizard </welcomeTitle>\n"
       "dpinst.xml, 25 times:\n  -02/13/2014,1.0.42.0\n  +03/01/2014,1.0.43.0\n"
       "dpinst.xml:\n"
       "  -    <welcomeTitle>Willkommen beim KWA Marlin USB Driver Installer Wizard </welcomeTitle>\n"
       "  +    <welcomeTitle>Willkommen beim KWA Vireo +USB Driver Installer Wizard </welcomeTitle>\n"},
      {old, folder / "none", 2, ""},
  };
  for (const auto& test : cases) {
    const ToolRun run = RunTool({"compare", test.before, test.after});
    EXPECT_EQ(run.status, test.status) << run.errors;
    EXPECT_EQ(run.output, test.output);
  }
  const json document = json::parse(RunTool({"compare", "--json", old, renewed}).output);
  EXPECT_EQ(document["alike"], false);
  EXPECT_EQ(document["added"][0]["kind"], "7-bit ASCII text, CR LF line ends");
  EXPECT_EQ(document["changed"][1]["changes"][1], (json{{"what", "size"}, {"before", "1"}, {"after", "2"}}));
}

}  // namespace
