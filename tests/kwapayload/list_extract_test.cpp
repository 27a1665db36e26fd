// The list and extract commands, as a user meets them.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "built_archive.h"
#include "built_image.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

const std::string kInf = "[Version]\r\nDriverVer=1,2\r\nDriverPackageDisplayName=\"Vireo One\"\r\n";
const std::vector<ArchiveBody> kBodiesA = {{"driver.inf", kInf}, {"empty", ""}};
const std::vector<ArchiveBody> kBodiesB = {{"abc.txt", "abc"}, {"kwap.bin", BuildArchive({{"x", "y"}})}};

// An installer with these bytes in its read-only data.
std::string BuildInstaller(const std::string& readOnlyData) {
  BuiltImage image;
  image.sections = {{".text", kCode, std::string(20, '\xC3')},
                    {".data", kWritableData, BuildArchive({{"writable", "1"}})},
                    {".rdata", kReadOnlyData, readOnlyData}};
  image.directories.resize(16);
  return BuildImage(image);
}

std::string BuildInstaller() {
  return BuildInstaller("constants" + std::string(3, '\0') + BuildArchive(kBodiesA) + BuildArchive(kBodiesB));
}

class ListExtract : public testing::Test {
 protected:
  std::string MakeFile(const std::string& bytes) {
    WriteWholeFile(folder / "file", bytes);
    return folder / "file";
  }

  // Expects exit status 1, these lines (each after "kwapayload: " and the test's folder), and nothing else.
  void ExpectFailure(const ToolRun& run, const std::vector<std::string>& faults) {
    std::string expected;
    for (const std::string& fault : faults) {
      expected += "kwapayload: " + (folder / fault) + "\n";
    }
    EXPECT_EQ(1, run.status);
    EXPECT_EQ(expected, run.errors);
    EXPECT_EQ("", run.output);
  }

  const TemporaryFolder folder;
};

TEST_F(ListExtract, ListForPeople) {
  const ToolRun run = RunTool({"list", MakeFile(BuildInstaller())});
  EXPECT_EQ(0, run.status);
  EXPECT_EQ("", run.errors);
  // The digests of nothing and of "abc" are the standard's examples.
  EXPECT_NE(std::string::npos,
            run.output.find("A             600  empty          0  empty                              "
                            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855\n"))
      << run.output;
  EXPECT_NE(std::string::npos,
            run.output.find("B             536  abc.txt        3  7-bit ASCII text, no line ends     "
                            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad\n"))
      << run.output;
  EXPECT_NE(std::string::npos, run.output.find("\n\n"
                                               "Signature:         none\n"
                                               "Package:           driver.inf\n"
                                               "Version:           1,2\n"
                                               "Display name:      Vireo One\n"
                                               "Family:            Vireo\n"
                                               "Devices:           Vireo Series (G-16, J1, 7101, 7102, Plover, Dunlin, "
                                               "Gannet), Vireoe Series (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)\n"
                                               "Devices (German):  Vireo Serie (G-16, J1, 7101, 7102, Plover, Dunlin, "
                                               "Gannet), Vireoe Serie (Y2, J1, Osprey, Y3, Petrel, Y4, Y5)\n"))
      << run.output;
}

TEST_F(ListExtract, ListForPrograms) {
  const std::string installer = BuildInstaller();
  const ToolRun run = RunTool({"list", "--json", MakeFile(installer)});
  EXPECT_EQ(0, run.status);
  const auto document = nlohmann::json::parse(run.output);
  ASSERT_EQ(4U, document["files"].size());
  const auto& last = document["files"][3];
  EXPECT_EQ("B", last["archive"]);
  EXPECT_EQ(2, last["order"]);
  EXPECT_EQ("kwap.bin", last["name"]);
  EXPECT_EQ(540, last["position"]);
  EXPECT_EQ(kBodiesB[1].bytes.size(), last["size"]);
  EXPECT_EQ(kBodiesB[1].bytes, installer.substr(last["fileOffset"], last["size"]));
  EXPECT_EQ("unknown data", last["kind"]);
  EXPECT_EQ("Vireo", document["package"]["family"]);
  EXPECT_EQ("Vireoe Serie (Y2", document["package"]["germanDevices"][7]);
  EXPECT_EQ(false, document["signed"]);
}

TEST_F(ListExtract, SignedInstaller) {
  BuiltImage image;
  image.sections = {{".rdata", kReadOnlyData, BuildArchive(kBodiesA) + BuildArchive(kBodiesB)}};
  image.directories.resize(16);
  image.directories[4] = {static_cast<std::uint32_t>(BuildImage(image).size()), 16};
  // The signature may hold anything, archives among it.
  const ToolRun run = RunTool({"list", MakeFile(BuildImage(image) + BuildArchive(kBodiesA))});
  EXPECT_EQ(0, run.status) << run.errors;
  EXPECT_NE(std::string::npos, run.output.find("Signature:         there is one, not checked\n"));
}

TEST_F(ListExtract, SingleArchiveWithoutInf) {
  const ToolRun run = RunTool({"list", MakeFile(BuildArchive({{"\x1B[2J", "1"}}))});
  EXPECT_EQ(0, run.status) << run.errors;
  EXPECT_NE(std::string::npos, run.output.find("-             272  \\x1B[2J     1  "));
  EXPECT_NE(std::string::npos, run.output.find("Package:           none, there is no INF\n"));
  EXPECT_EQ(std::string::npos, run.output.find("Signature"));
}

TEST_F(ListExtract, FilesThatAreNoInstallers) {
  const std::string archive = BuildArchive(kBodiesA);
  std::string damaged = BuildInstaller(archive + BuildArchive(kBodiesB));
  damaged[damaged.find("empty") + 263] = '\x80';
  const std::string whole = BuildInstaller(archive + BuildArchive(kBodiesB));
  const std::pair<std::string, std::vector<std::string>> kFiles[] = {
      {"", {"file: is neither an installer nor a payload archive"}},
      {"text", {"file: is neither an installer nor a payload archive"}},
      {"MZ", {"file: is no Windows program, only a DOS one"}},
      {BuildInstaller("none"), {"file: holds no payload archives in its read-only data instead of two"}},
      {BuildInstaller(archive), {"file: holds one payload archive in its read-only data instead of two"}},
      {BuildInstaller(archive + archive + archive),
       {"file: holds more than two payload archives in its read-only data instead of two"}},
      {archive.substr(0, 500), {"file: ends within its table of 2 entries"}},
      {damaged, {"file: archive A, empty: has 2147483648 bytes; the installer reads bodies below 2147483648"}},
      {whole.substr(0, whole.size() - 10),
       {"file: section .rdata: the file ends 10 bytes before it does",
        "file: archive B, kwap.bin: its body of 280 bytes runs past the end of the data"}},
  };
  for (const auto& [bytes, faults] : kFiles) {
    ExpectFailure(RunTool({"list", MakeFile(bytes)}), faults);
    ExpectFailure(RunTool({"extract", folder / "file", folder / "out"}), faults);
    EXPECT_FALSE(std::filesystem::exists(folder / "out"));
  }
  ExpectFailure(RunTool({"list", folder / "none"}), {"none: cannot be read: No such file or directory"});
  ExpectFailure(RunTool({"list", folder / "."}), {".: is not a file"});
}

TEST_F(ListExtract, OutputThatCannotBeWritten) {
  if (!std::filesystem::exists("/dev/full")) {
    GTEST_SKIP() << "needs a device that is always full";
  }
  const ToolRun run = RunTool({"list", MakeFile(BuildInstaller())}, "sh -c '\"$@\" >/dev/full' sh ");
  EXPECT_EQ(1, run.status);
  EXPECT_EQ("kwapayload: standard output: cannot be written\n", run.errors);
}

TEST_F(ListExtract, ExtractsAllOrTheNamedFiles) {
  const std::string file = MakeFile(BuildInstaller());
  EXPECT_EQ(0, RunTool({"extract", file, folder / "new/all"}).status);
  EXPECT_EQ((std::vector<std::string>{"abc.txt", "driver.inf", "empty", "kwap.bin"}), NamesIn(folder / "new/all"));
  for (const auto& bodies : {kBodiesA, kBodiesB}) {
    for (const ArchiveBody& body : bodies) {
      EXPECT_EQ(body.bytes, ReadWholeFile(folder / ("new/all/" + body.name)));
    }
  }
  EXPECT_EQ(0, RunTool({"extract", file, folder / "some", "kwap.bin", "empty"}).status);
  EXPECT_EQ((std::vector<std::string>{"empty", "kwap.bin"}), NamesIn(folder / "some"));
  ExpectFailure(RunTool({"extract", file, folder / "none", "empty", "Empty", "no\nne"}),
                {"file: holds no file Empty", "file: holds no file no\\x0Ane"});
  EXPECT_FALSE(std::filesystem::exists(folder / "none"));
}

TEST_F(ListExtract, OverwritesOnlyWithForce) {
  const std::string file = MakeFile(BuildInstaller());
  WriteWholeFile(folder / "out/abc.txt", "mine");
  std::filesystem::create_directory(folder / "out/empty");
  const std::string out = (std::filesystem::path("out") / "").string();
  ExpectFailure(RunTool({"extract", file, folder / "out"}),
                {out + "empty: exists; --force overwrites it", out + "abc.txt: exists; --force overwrites it"});
  EXPECT_EQ((std::vector<std::string>{"abc.txt", "empty"}), NamesIn(folder / "out"));
  EXPECT_EQ(0, RunTool({"extract", "--force", file, folder / "out", "abc.txt"}).status);
  EXPECT_EQ("abc", ReadWholeFile(folder / "out/abc.txt"));
  ExpectFailure(RunTool({"extract", "--force", file, folder / "out", "empty"}),
                {out + "empty: exists and is not a file"});
}

#ifndef _WIN32
// A link in the folder is replaced, never followed.
TEST_F(ListExtract, LinksAreNotFollowed) {
  const std::string file = MakeFile(BuildInstaller());
  WriteWholeFile(folder / "outside", "mine");
  std::filesystem::create_directory(folder / "out");
  std::filesystem::create_symlink(folder / "outside", folder / "out/abc.txt");
  std::filesystem::create_symlink(folder / "nowhere", folder / "out/empty");
  ExpectFailure(RunTool({"extract", file, folder / "out"}),
                {"out/empty: exists; --force overwrites it", "out/abc.txt: exists; --force overwrites it"});
  EXPECT_EQ(0, RunTool({"extract", "--force", file, folder / "out"}).status);
  EXPECT_EQ("mine", ReadWholeFile(folder / "outside"));
  EXPECT_EQ("abc", ReadWholeFile(folder / "out/abc.txt"));
  EXPECT_FALSE(std::filesystem::exists(folder / "nowhere"));
}

TEST_F(ListExtract, FullDiskLeavesNoPartialFile) {
  const std::string file = MakeFile(BuildArchive({{"a", "small"}, {"b", std::string(300000, 'x')}}));
  ExpectFailure(RunTool({"extract", file, folder / "out"}, "ulimit -f 64; "),
                {"out/b: cannot be written: File too large"});
  EXPECT_EQ(std::vector<std::string>{"a"}, NamesIn(folder / "out"));
}
#endif

TEST_F(ListExtract, NamesThatLeadOutsideAreRefused) {
  const std::string kNames[] = {"../up", "..",       "/abs", "a/b",  "..\\up", "C:\\x",    "C:x",
                                "NUL",   "com1.txt", "a:s",  "a\nb", "b.",     "\xFC.txt", std::string(1, ' ')};
  for (const std::string& name : kNames) {
    const ToolRun run = RunTool({"extract", MakeFile(BuildArchive({{"good", "1"}, {name, "2"}})), folder / "out"});
    EXPECT_EQ(1, run.status) << name;
    EXPECT_EQ(0U, run.errors.find("kwapayload: " + (folder / "file") + ": ")) << run.errors;
    EXPECT_EQ(1, std::count(run.errors.begin(), run.errors.end(), '\n')) << run.errors;
    EXPECT_EQ(std::vector<std::string>{"file"}, NamesIn(folder.Path())) << name;
  }
  // The good ones can be had by name.
  EXPECT_EQ(0, RunTool({"extract", folder / "file", folder / "out", "good"}).status);
  EXPECT_EQ(std::vector<std::string>{"good"}, NamesIn(folder / "out"));
}

TEST_F(ListExtract, NamesThatStandTwiceAreRefused) {
  const std::string file = MakeFile(BuildInstaller(BuildArchive({{"a", "1"}}) + BuildArchive({{"A", "2"}})));
  ExpectFailure(RunTool({"extract", "--force", file, folder / "out"}),
                {"file: A stands there twice; to Windows, upper and lower case are the same"});
  EXPECT_EQ(0, RunTool({"extract", file, folder / "out", "A"}).status);
  EXPECT_EQ("2", ReadWholeFile(folder / "out/A"));
}

}  // namespace
