// The commands that look into a file: exit status, options, wording, the lines of an error.

#include <algorithm>

#include "installer_image.h"
#include "pe/built_image.h"
#include "tool_test.h"

namespace {

using Look = ToolTest;

// The tests of the reports know what else is in them.
TEST_F(Look, WritesTheReport) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"list"}, "    (who may be trusted, revocation and dates are not judged: that is for Windows)\n"},
      {{"list", "--json"}, "\"name\": \"kwa_installer.exe\""},
      {{"list", "--cyclonedx"}, "\"bomFormat\": \"CycloneDX\""},
      {{"verify", "--json"}, "\"findings\": []"},
      {{"verify", "--contents", KWA_CONTENTS}, KWA_INSTALLER ": in order\n"},
      {{"compare", KWA_INSTALLER, "--json"}, "\"alike\": true"},
  };
  for (const auto& [arguments, part] : cases) {
    std::vector<std::string> all = arguments;
    all.emplace_back(KWA_INSTALLER);
    const ToolRun run = RunTool(all);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_NE(run.output.find(part), std::string::npos) << run.output;
  }
}

TEST_F(Look, FilesThatAreNoInstallers) {
  BuiltImage image;
  image.sections = {
      {".rdata", kReadOnlyData, BuildArchive({{"a", "1"}}) + BuildArchive({{"b", std::string(80, 'b')}})}};
  const std::string whole = BuildImage(image);
  const std::string file = MakeFile("file", whole.substr(0, whole.size() - 10));
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"list", file},
                                                    {"extract", file, folder / "out"},
                                                    {"preview", file},
                                                    {"compare", KWA_INSTALLER, file}}) {
    ExpectFailure(arguments, {"file: section .rdata: the file ends 10 bytes before it does",
                              "file: archive at offset " + std::to_string(whole.rfind("KWAP")) +
                                  ", b: its body of 80 bytes runs past the end of the data"});
  }
  EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"file"});
  ExpectFailure({"list", MakeFile("empty", "")}, {"empty: is neither an installer nor a payload archive"});
  MakeFile("package/a.inf", "");
  ExpectFailure({"compare", KWA_INSTALLER, folder / "package"},
                {"package: is a folder, not an installer or payload archive"});
  ExpectFailure({"list", folder / "none"}, {"none: cannot be read: No such file or directory"});
  ExpectFailure({"list", folder / "."},
                {".: is neither a payload folder with a and b nor the folder of a driver package with an INF"});
}

TEST_F(Look, Verify) {
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
TEST_F(Look, PreviewIsTheExpectedConfiguration) {
  const std::string expected = ReadWholeFile(KWA_SOURCES "/tests/expected/dpinst.xml");
  std::string legacy = expected;
  const std::string flag = "  <forceIfDriverIsNotBetter/>\r\n";
  legacy.insert(legacy.find(flag) + flag.size(), "  <legacyMode/>\r\n");
  const ToolRun run = RunTool({"preview", KWA_INSTALLER});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.output + run.errors, expected);
  EXPECT_EQ(RunTool({"preview", "--windows", "xp", KWA_INSTALLER}).output, legacy);
}

TEST_F(Look, ComparePrintsDifferencesAndNothingElse) {
  InstallerImage image;
  const std::size_t padding = image.Find("marlin_usb.cat").bodyPosition + 11519;
  image.SetText(padding, "x");
  const std::string padded = MakeFile("padded.exe", image.Bytes());
  image.SetText(padding, {'\0'});
  const std::size_t inf = image.Find("marlin_usb.inf").bodyPosition;
  image.SetText(image.Bytes().find("\"Marlin USB\"", inf), "\"Vireo +USB\"");
  image.SetText(image.Bytes().find("02/13/2014", inf), "03/01/2014,1.0.43.0");
  const struct {
    std::string after;
    int status;
    std::string output;
  } cases[] = {
      {KWA_INSTALLER, 0, ""},
      {padded, 1,
       "changed: marlin_usb.cat: padding none -> 78\n"
       "driver version: the same in both; Setup does not take the new package for a newer one\n"},
      {MakeFile("next.exe", image.Bytes()), 1,
       "changed: marlin_usb.inf: in the catalog yes -> NO\n"
       "package: version 02/13/2014,1.0.42.0 -> 03/01/2014,1.0.43.0; display name Marlin USB -> Vireo +USB\n"
       "dpinst.xml, 24 times:\n"
       "  -    <welcomeTitle>Welcome to the KWA Marlin USB Driver Installer Wizard </welcomeTitle>\n"
       "  +    <welcomeTitle>Welcome to the KWA Vireo +USB Driver Installer Wizard </welcomeTitle>\n"
       "dpinst.xml, 25 times:\n  -02/13/2014,1.0.42.0\n  +03/01/2014,1.0.43.0\n"
       "dpinst.xml:\n"
       "  -    <welcomeTitle>Willkommen beim KWA Marlin USB Driver Installer Wizard </welcomeTitle>\n"
       "  +    <welcomeTitle>Willkommen beim KWA Vireo +USB Driver Installer Wizard </welcomeTitle>\n"},
      {folder / "none", 2, ""},
  };
  for (const auto& test : cases) {
    const ToolRun run = RunTool({"compare", KWA_INSTALLER, test.after});
    EXPECT_EQ(run.status, test.status) << run.errors;
    EXPECT_EQ(run.output, test.output);
  }
}

}  // namespace
