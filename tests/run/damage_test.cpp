// Runs of damaged installers: copies of the built file with a few bytes changed.

#include "run_fixture.h"

namespace {

using Files = std::map<std::string, std::string>;

// The files of the payload that are written before the named one, sorted.
std::vector<std::string> NamesBefore(const InstallerImage& image, const std::string& end) {
  std::vector<std::string> names;
  for (const EmbeddedArchive* archive : {&image.A(), &image.B()}) {
    for (const EmbeddedFile& file : archive->files) {
      if (file.name == end) {
        std::sort(names.begin(), names.end());
        return names;
      }
      names.push_back(file.name);
    }
  }
  ADD_FAILURE() << "no file " << end;
  return names;
}

struct Damage {
  const char* what;
  void (*change)(InstallerImage&);
  bool returns;     // else it ends through terminate
  const char* end;  // the first of the payload's files that is not written; those before it stay; null: none stays
};

constexpr char kFirstOfA[] = "marlinusb.exe";
constexpr char kFirstOfB[] = "dpinst.exe";

// clang-format off
const Damage kDamages[] = {
    {"MagicOfA", [](InstallerImage& image) { image.SetWord(image.A().position, 0x5041574C); }, true, kFirstOfA},
    {"NothingInA", [](InstallerImage& image) { image.SetCount(image.A(), 0); }, true, kFirstOfA},
    {"MagicOfB", [](InstallerImage& image) { image.SetWord(image.B().position, 0); }, true, kFirstOfB},
    {"NothingInB", [](InstallerImage& image) { image.SetCount(image.B(), 0); }, true, kFirstOfB},
    {"RefusedNameInA", [](InstallerImage& image) { image.SetName(image.Find("marlin_usb.sys"), "a*b"); }, true, "marlin_usb.sys"},
    {"MissingFolderInB", [](InstallerImage& image) { image.SetName(image.Find("eula_de.txt"), "x\\y"); }, true, "eula_de.txt"},
    // The table of this many entries does not fit in 32 bits, in a container, or in memory.
    {"CountOfAPastTheLimit", [](InstallerImage& image) { image.SetCount(image.A(), 16268816); }, false, kFirstOfA},
    {"CountOfATheLargest", [](InstallerImage& image) { image.SetCount(image.A(), 0xFFFFFFFF); }, false, kFirstOfA},
    {"CountOfAAtTheLimit", [](InstallerImage& image) { image.SetCount(image.A(), 16268815); }, false, kFirstOfA},
    {"CountOfAWithoutMemory", [](InstallerImage& image) { image.SetCount(image.A(), 8134407); }, false, kFirstOfA},
    {"CountOfBPastTheLimit", [](InstallerImage& image) { image.SetCount(image.B(), 16268816); }, false, kFirstOfB},
    // DPInst cannot be started: it is not there, or no program.
    {"NoDpinst", [](InstallerImage& image) {
       image.SetName(image.Find("dpinst64.exe"), "dpinst65.exe");
       image.SetName(image.Find("dpinst.exe"), "dpinst33.exe");
     }, true, nullptr},
    {"DpinstIsNoProgram", [](InstallerImage& image) {
       image.SetBody(image.Find("dpinst64.exe"), "");
       image.SetBody(image.Find("dpinst.exe"), "");
     }, true, nullptr},
};
// clang-format on

class DamagedInstaller : public InstallerRun, public testing::WithParamInterface<Damage> {};

TEST_P(DamagedInstaller, StartsNothing) {
  const Damage& damage = GetParam();
  const InstallerImage sound;
  InstallerImage damaged = sound;
  damage.change(damaged);
  const RunResult result = RunToEnd(SetupOf(damaged));
  EXPECT_EQ(result.exitStatus == 0, damage.returns) << result.exitStatus;
  EXPECT_EQ(result.invalidParameterLines, 0);
  EXPECT_FALSE(DpinstRan());
  ASSERT_EQ(Exists(work), damage.end != nullptr);
  if (damage.end != nullptr) {
    EXPECT_EQ(NamesIn(work), NamesBefore(sound, damage.end));
  }
}

// cppcheck-suppress syntaxError // it does not know an empty argument of a macro
INSTANTIATE_TEST_SUITE_P(, DamagedInstaller, testing::ValuesIn(kDamages),
                         [](const auto& test) { return std::string(test.param.what); });

TEST_F(InstallerRun, ClearsAwayWhatADamagedInstallerLeft) {
  InstallerImage damaged;
  damaged.SetCount(damaged.B(), 0);
  EXPECT_EQ(RunToEnd(SetupOf(damaged)).exitStatus, 0U);
  ASSERT_TRUE(Exists(work + "\\Panorama.exe"));
  EXPECT_EQ(RunToEnd(Setup()).exitStatus, 0U);
  EXPECT_TRUE(DpinstRan());
  EXPECT_FALSE(Exists(work));
}

// A size of 2^31 or more means no bytes at all: every later body is then read from the wrong place, and the run goes on
// with what comes of that.
TEST_F(InstallerRun, TakesABodyOf2To31BytesForEmpty) {
  InstallerImage image;
  image.SetSize(image.Find("marlin_usb.inf"), 0x80000000);
  EXPECT_EQ(RunToEnd(SetupOf(image)).exitStatus, 0U);

  const std::vector<EmbeddedFile>& files = image.A().files;
  const DpinstReport report = ReadReport(reports);
  std::size_t position = files[0].bodyPosition;
  for (const EmbeddedFile& file : files) {
    const std::size_t size = file.name == "marlin_usb.inf" ? 0 : file.size;
    EXPECT_EQ(report.files.at(file.name), Fingerprint(image.Bytes().substr(position, size))) << file.name;
    position += (size + 3) / 4 * 4;
  }
  EXPECT_EQ(report.files.at("kwa.bmp"), Fingerprint(PayloadFile('b', "kwa.bmp"))) << "archive B is sound";
  EXPECT_NE(report.document.find("Welcome to the KWA  Driver"), std::string::npos) << "no INF, no name";
  EXPECT_FALSE(Exists(work));
}

}  // namespace
