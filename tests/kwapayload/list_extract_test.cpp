// The list, extract and preview commands, as a user meets them. The Windows tests hold the installer's own writer to
// the configuration that preview is held to here, and to the preview for many INFs.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "built_archive.h"
#include "built_image.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

const std::string kInf = "[Version]\r\nDriverVer=1,2\r\nDriverPackageDisplayName=\"Vireo One\"\r\n";
const std::vector<ArchiveBody> kBodiesA = {{"driver.inf", kInf}, {"empty", ""}};
const std::vector<ArchiveBody> kBodiesB = {{"abc.txt", "abc"}, {"kwap.bin", "KWAP" + std::string(276, '\1')}};
const std::string kArchives = BuildArchive(kBodiesA) + BuildArchive(kBodiesB);

// An installer with these sections of read-only data, and with other data that looks like more.
BuiltImage Installer(const std::vector<std::string>& readOnlyData) {
  BuiltImage image;
  image.sections = {{".data", kWritableData, BuildArchive({{"writable", "1"}})}};
  for (const std::string& data : readOnlyData) {
    image.sections.push_back({".rdata", kReadOnlyData, data});
  }
  return image;
}

class ListExtract : public testing::Test {
 protected:
  std::string MakeFile(const std::string& bytes) {
    WriteWholeFile(folder / "file", bytes);
    return folder / "file";
  }

  std::string List(const std::string& bytes) {
    const ToolRun run = RunTool({"list", MakeFile(bytes)});
    EXPECT_EQ(0, run.status);
    EXPECT_EQ("", run.errors);
    return run.output;
  }

  ToolRun Extract(const std::string& to, std::vector<std::string> names = {}) {
    names.insert(names.begin(), {"extract", folder / "file", folder / to});
    return RunTool(names);
  }

  const TemporaryFolder folder;
};

void ExpectPart(const std::string& text, const std::string& part) {
  EXPECT_NE(std::string::npos, text.find(part)) << text;
}

TEST_F(ListExtract, ListForPeople) {
  const std::string output = List(BuildImage(Installer({"constants" + std::string(3, '\0') + kArchives})));
  ExpectPart(output,
             "ARCHIVE  NAME        SIZE  VERSION  CATALOG  KIND\n"
             "A        driver.inf    64                    7-bit ASCII text, CR LF line ends\n"
             "A        empty          0                    empty\nB        abc.txt        3                    7");
  const std::string devices = " (G-16, J1, 7101, 7102, Plover, Dunlin, Gannet), Vireoe ";
  ExpectPart(output,
             "\n\nSignature:         none\nPackage:           driver.inf\nVersion:           1,2\n"
             "Display name:      Vireo One\nFamily:            Vireo\nDevices:           Vireo Series" +
                 devices + "Series (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)\nDevices (German):  Vireo Serie" + devices);
}

// Each of the archives in a section of its own, the first of them behind the second in the table of sections.
TEST_F(ListExtract, ListForProgramsInTheOrderOfTheFile) {
  std::string installer = BuildImage(Installer({BuildArchive(kBodiesA), BuildArchive(kBodiesB)}));
  const std::size_t table = installer.find(".rdata");
  installer.replace(table, 80, installer.substr(table + 40, 40) + installer.substr(table, 40));
  const ToolRun run = RunTool({"list", "--json", MakeFile(installer)});
  EXPECT_EQ(0, run.status) << run.errors;
  const auto document = nlohmann::json::parse(run.output);
  ASSERT_EQ(4U, document["files"].size());
  const nlohmann::json& last = document["files"][3];
  EXPECT_EQ(kBodiesB[1].bytes, installer.substr(last["fileOffset"], last["size"]));
  const auto expected = nlohmann::json::parse(R"({"archive": "B", "order": 2, "name": "kwap.bin", "position": 540,
                                                  "size": 280, "kind": "unknown data", "version": null})");
  for (const auto& [key, value] : expected.items()) {
    EXPECT_EQ(value, last[key]) << key;
  }
  EXPECT_EQ("Vireo", document["package"]["family"]);
  EXPECT_EQ("Vireoe Serie (Y2", document["package"]["germanDevices"][7]);
  EXPECT_EQ(false, document["signed"]);
}

TEST_F(ListExtract, SignedInstallersAndSingleArchives) {
  BuiltImage image = Installer({kArchives});
  image.directories[4] = {static_cast<std::uint32_t>(BuildImage(image).size()), 16};
  // The signature may hold anything, archives among it.
  ExpectPart(List(BuildImage(image) + BuildArchive(kBodiesA)), "Signature:         there is one, not checked\n");
  const std::string output = List(BuildArchive({{"\x7F[2J\xFF", "1"}}));
  ExpectPart(output, "-        \\x7F[2J\\xFF     1  ");
  ExpectPart(output, "\n\nPackage:           none, there is no INF\n");
}

TEST_F(ListExtract, FilesThatAreNoInstallers) {
  const std::string archive = BuildArchive(kBodiesA);
  const std::string whole = BuildImage(Installer({kArchives}));
  const std::pair<std::string, std::vector<std::string>> kFiles[] = {
      {"", {"file: is neither an installer nor a payload archive"}},
      {BuildImage(Installer({archive})), {"file: holds one payload archive in its read-only data instead of two"}},
      {BuildImage(Installer({archive + archive, archive})),
       {"file: holds more than two payload archives in its read-only data instead of two"}},
      {archive.substr(0, 500), {"file: ends within its table of 2 entries"}},
      {whole.substr(0, whole.size() - 10),
       {"file: section .rdata: the file ends 10 bytes before it does",
        "file: archive at offset " + std::to_string(whole.rfind("KWAP\x02")) +
            ", kwap.bin: its body of 280 bytes runs past the end of the data"}},
  };
  for (const auto& [bytes, faults] : kFiles) {
    ExpectFailure(RunTool({"list", MakeFile(bytes)}), folder.Path(), faults);
    ExpectFailure(Extract("out"), folder.Path(), faults);
    EXPECT_FALSE(std::filesystem::exists(folder / "out"));
  }
  ExpectFailure(RunTool({"list", folder / "none"}), folder.Path(), {"none: cannot be read: No such file or directory"});
}

TEST_F(ListExtract, ExtractsAllOrTheNamedFiles) {
  std::filesystem::create_symlink(KWA_INSTALLER, folder / "file");
  EXPECT_EQ(0, Extract("new/all").status);
  std::size_t count = 0;
  for (const char* const archive : {"/a", "/b"}) {
    for (const std::string& name : NamesIn(std::string(KWA_PAYLOAD_DIR) + archive)) {
      EXPECT_TRUE(ReadWholeFile(std::string(KWA_PAYLOAD_DIR) + archive + "/" + name) ==
                  ReadWholeFile(folder / ("new/all/" + name)))
          << name;
      ++count;
    }
  }
  EXPECT_EQ(count, NamesIn(folder / "new/all").size());
  EXPECT_EQ(0, Extract("some", {"kwa.bmp", "Panorama.chm"}).status);
  EXPECT_EQ((std::vector<std::string>{"Panorama.chm", "kwa.bmp"}), NamesIn(folder / "some"));
  ExpectFailure(Extract("none", {"kwa.bmp", "Kwa.bmp", "no\x1Fne"}), folder.Path(),
                {"file: holds no file Kwa.bmp", "file: holds no file no\\x1Fne"});
  EXPECT_FALSE(std::filesystem::exists(folder / "none"));
  ExpectFailure(Extract("file/out"), folder.Path(), {"file/out: cannot be created: Not a directory"});
}

TEST(Preview, IsTheExpectedConfiguration) {
  const std::string expected = ReadWholeFile(KWA_EXPECTED_DOCUMENT);
  std::string legacy = expected;
  const std::string flag = "  <forceIfDriverIsNotBetter/>\r\n";
  legacy.insert(legacy.find(flag) + flag.size(), "  <legacyMode/>\r\n");
  const ToolRun run = RunTool({"preview", KWA_INSTALLER});
  EXPECT_EQ(expected, run.output + run.errors);
  EXPECT_EQ(legacy, RunTool({"preview", "--windows", "xp", KWA_INSTALLER}).output);
}

// A link in the folder is replaced, never followed.
TEST_F(ListExtract, OverwritesOnlyWithForceAndFollowsNoLink) {
  MakeFile(BuildImage(Installer({kArchives})));
  WriteWholeFile(folder / "outside", "mine");
  WriteWholeFile(folder / "out/kwap.bin", "mine");
  std::filesystem::create_symlink(folder / "outside", folder / "out/abc.txt");
  std::filesystem::create_symlink(folder / "nowhere", folder / "out/empty");
  const std::string exists = ": exists; --force overwrites it";
  ExpectFailure(Extract("out"), folder.Path(), {"out/empty" + exists, "out/abc.txt" + exists, "out/kwap.bin" + exists});
  EXPECT_EQ(3U, NamesIn(folder / "out").size());
  EXPECT_EQ(0, Extract("out", {"--force"}).status);
  EXPECT_EQ("mine", ReadWholeFile(folder / "outside"));
  EXPECT_EQ("abc", ReadWholeFile(folder / "out/abc.txt"));
  EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
  std::filesystem::create_directories(folder / "folder/empty");
  ExpectFailure(Extract("folder", {"--force", "empty"}), folder.Path(), {"folder/empty: exists and is not a file"});
}

TEST_F(ListExtract, OutputThatCannotBeWrittenIsAFailure) {
  const ToolRun run = RunTool({"list", MakeFile(BuildArchive(kBodiesA))}, "sh -c '\"$@\" >/dev/full' sh ");
  EXPECT_EQ(1, run.status);
  EXPECT_EQ("kwapayload: standard output: cannot be written\n", run.errors);
}

TEST_F(ListExtract, NamesThatLeadOutsideAreRefused) {
  for (const std::string name : {"../up", "..", "/abs", "..\\up", "C:x", "NUL", "a:s", "b."}) {
    MakeFile(BuildArchive({{"good", "1"}, {name, "2"}}));
    const ToolRun run = Extract("out");
    EXPECT_EQ(1, run.status) << name;
    EXPECT_EQ(1, std::count(run.errors.begin(), run.errors.end(), '\n')) << run.errors;
    EXPECT_EQ(std::vector<std::string>{"file"}, NamesIn(folder.Path())) << name;
  }
  // The good ones can be had by name.
  EXPECT_EQ(0, Extract("out", {"good"}).status);
  MakeFile(BuildImage(Installer({BuildArchive({{"a", "1"}}) + BuildArchive({{"A", "2"}})})));
  ExpectFailure(Extract("out", {"--force"}), folder.Path(),
                {"file: A stands there twice; to Windows, upper and lower case are the same"});
  EXPECT_EQ(std::vector<std::string>{"good"}, NamesIn(folder / "out"));
}

}  // namespace
