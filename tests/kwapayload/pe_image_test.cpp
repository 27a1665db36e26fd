// The reader of executables: headers, imports, resources, version record, signature.

#include "pe/pe_image.h"

#include <gtest/gtest.h>

#include "built_archive.h"
#include "built_image.h"
#include "pe/pe_imports.h"
#include "pe/pe_resources.h"
#include "pe/version_record.h"

namespace {

std::string WideBytes(const std::string& text) {
  std::string bytes;
  for (const char character : text) {
    bytes += character;
    bytes += '\0';
  }
  return bytes;
}

std::string HalfBytes(std::size_t half) {
  return WordBytes(static_cast<std::uint32_t>(half)).substr(0, 2);
}

void Align(std::string& bytes) {
  bytes.resize((bytes.size() + 3) / 4 * 4);
}

kwa::PeImage Read(const std::string& file) {
  kwa::PeImage image;
  std::string fault;
  EXPECT_TRUE(kwa::ReadPeImage(kwa::ByteSpan(file), &image, &fault)) << fault;
  return image;
}

std::string FaultOf(const std::string& file) {
  kwa::PeImage image;
  std::string fault;
  return kwa::ReadPeImage(kwa::ByteSpan(file), &image, &fault) ? "" : fault;
}

// A section with the import of two functions of K.dll, by name and by ordinal, and a delayed one of D.dll.
std::string ImportSection(bool isPlus, std::uint32_t base) {
  const auto thunk = [isPlus](std::uint32_t low, bool isOrdinal) {
    const std::string high = WordBytes(isOrdinal ? 0x80000000U : 0);
    return isPlus ? WordBytes(low) + high : WordBytes(isOrdinal ? low | 0x80000000U : low);
  };
  std::string bytes(400, '\0');
  const auto put = [&bytes](std::size_t at, const std::string& text) { bytes.replace(at, text.size(), text); };
  put(0, WordBytes(base + 100) + std::string(8, '\0') + WordBytes(base + 200) + WordBytes(base + 300));
  put(100, thunk(base + 220, false) + thunk(7, true));
  put(200, "K.dll");
  put(222, "Function");
  put(240, WordBytes(1) + WordBytes(base + 320) + WordBytes(0) + WordBytes(0) + WordBytes(base + 340));
  put(320, "D.dll");
  put(340, thunk(base + 360, false));
  put(362, "Late");
  return bytes;
}

std::string Shown(const kwa::ImportTable& table) {
  std::string text;
  for (const kwa::ImportedLibrary& library : table.libraries) {
    text += library.name + (library.isDelayed ? " (delayed):" : ":");
    for (const std::string& function : library.functions) {
      text += " " + function;
    }
    text += "\n";
  }
  return text + (table.isComplete ? "" : "incomplete\n");
}

BuiltImage ImageWithImports(bool isPlus) {
  BuiltImage image;
  image.isPlus = isPlus;
  image.sections = {{".text", kCode, std::string(16, '\x90')},
                    {".idata", kWritableData, ImportSection(isPlus, SectionAddress(1))}};
  image.directories.resize(16);
  image.directories[kwa::kPeImportDirectory] = {SectionAddress(1), 40};
  image.directories[kwa::kPeDelayImportDirectory] = {SectionAddress(1) + 240, 64};
  return image;
}

TEST(PeImage, Headers) {
  BuiltImage built;
  built.isPlus = true;
  built.machine = kwa::kImageFileMachineAmd64;
  built.subsystem = kwa::kImageSubsystemNative;
  built.sections = {{".text", kCode, std::string(700, '\x90')}, {".rdata", kReadOnlyData, "data"}};
  built.directories = {{0, 0}, {0x1234, 0x56}};
  const std::string file = BuildImage(built);
  const kwa::PeImage image = Read(file);
  EXPECT_TRUE(image.isPlus);
  EXPECT_EQ(kwa::kImageFileMachineAmd64, image.machine);
  EXPECT_EQ(kwa::kImageSubsystemNative, image.subsystem);
  EXPECT_EQ(0x400000U, image.imageBase);
  ASSERT_EQ(2U, image.sections.size());
  EXPECT_EQ(".rdata", image.sections[1].name);
  EXPECT_EQ("data", image.sections[1].bytes.Text());
  EXPECT_TRUE(image.sections[1].IsReadOnlyData());
  EXPECT_FALSE(image.sections[0].IsReadOnlyData());
  EXPECT_EQ("ata", image.At(SectionAddress(1) + 1).Text());
  EXPECT_TRUE(image.At(SectionAddress(1) + 4).Empty());
  EXPECT_TRUE(image.At(0).Empty());
  EXPECT_EQ(0x1234U, image.Directory(kwa::kPeImportDirectory).address);
  EXPECT_EQ(0U, image.Directory(kwa::kPeResourceDirectory).address);
}

TEST(PeImage, NoImages) {
  BuiltImage built;
  built.sections.resize(97, {".x", kReadOnlyData, ""});
  const std::string many = BuildImage(built);
  built.sections.resize(1);
  const std::string good = BuildImage(built);
  std::string farHeader = good;
  PutWord(farHeader, 0x3C, 0xFFFFFFFC);
  std::string otherMagic = good;
  otherMagic[0x80 + 24] = '\x07';
  const std::pair<std::string, std::string> kFiles[] = {
      {"", "is no Windows program"},
      {"M", "is no Windows program"},
      {"MZ", "is no Windows program, only a DOS one"},
      {farHeader, "is no Windows program, only a DOS one"},
      {good.substr(0, 0x80 + 20), "is no Windows program, only a DOS one"},
      {good.substr(0, 0x80 + 24), "has no optional header of a Windows program"},
      {otherMagic, "has no optional header of a Windows program"},
      {good.substr(0, 0x80 + 24 + 95), "ends within the headers of a Windows program"},
      {good.substr(0, 0x80 + 24 + 96 + 39), "ends within the headers of a Windows program"},
      {many, "has 97 sections; Windows loads at most 96"},
      {good, ""},
  };
  for (const auto& [file, fault] : kFiles) {
    EXPECT_EQ(fault, FaultOf(file));
  }
}

TEST(PeImage, Imports) {
  for (const bool isPlus : {false, true}) {
    EXPECT_EQ("K.dll: Function #7\nD.dll (delayed): Late\n",
              Shown(ReadImports(Read(BuildImage(ImageWithImports(isPlus))))));
  }
}

// Old linkers wrote addresses with the image base into the delayed imports.
TEST(PeImage, DelayedImportsWithImageBase) {
  BuiltImage built = ImageWithImports(false);
  std::string& section = built.sections[1].bytes;
  PutWord(section, 240, 0);
  for (const std::size_t at : {244U, 256U, 340U}) {
    PutWord(section, at, kwa::ByteSpan(section).U32(at) + 0x400000);
  }
  EXPECT_EQ("K.dll: Function #7\nD.dll (delayed): Late\n", Shown(ReadImports(Read(BuildImage(built)))));
}

TEST(PeImage, ImportsThatLeadNowhere) {
  BuiltImage cutOff = ImageWithImports(false);
  cutOff.sections[1].bytes.resize(104);
  EXPECT_EQ(": \nincomplete\n", Shown(ReadImports(Read(BuildImage(cutOff)))));
  BuiltImage endless = ImageWithImports(false);
  endless.sections[1].bytes.assign(4 * 100000, '\x11');
  EXPECT_FALSE(ReadImports(Read(BuildImage(endless))).isComplete);
  BuiltImage outside = ImageWithImports(false);
  outside.directories[kwa::kPeImportDirectory] = {0x70000000, 40};
  EXPECT_FALSE(ReadImports(Read(BuildImage(outside))).isComplete);
}

// One branch of a resource tree: directory, entry.
std::string TreeNode(std::uint32_t id, std::uint32_t target) {
  return std::string(14, '\0') + HalfBytes(1) + WordBytes(id) + WordBytes(target);
}

TEST(PeImage, Resources) {
  constexpr std::uint32_t kDirectory = 0x80000000;
  const std::string tree = TreeNode(24, kDirectory | 24) + TreeNode(1, kDirectory | 48) + TreeNode(0x409, 72) +
                           WordBytes(SectionAddress(0) + 88) + WordBytes(4) + std::string(8, '\0') + "dataMORE";
  BuiltImage built;
  built.sections = {{".rsrc", kReadOnlyData, tree}};
  built.directories = {{0, 0}, {0, 0}, {SectionAddress(0), 100}};
  const std::string file = BuildImage(built);
  const auto resources = kwa::ReadResources(Read(file));
  ASSERT_EQ(1U, resources.size());
  EXPECT_EQ(0x409U, resources[0].language);
  EXPECT_EQ("data", kwa::FirstResource(resources, kwa::kResourceTypeManifest).Text());
  EXPECT_TRUE(kwa::FirstResource(resources, kwa::kResourceTypeVersion).Empty());
}

// A tree whose branches lead back to its root ends all the same.
TEST(PeImage, ResourcesInACircle) {
  std::string tree = std::string(14, '\0') + HalfBytes(0xFFFF);
  for (int i = 0; i < 0xFFFF; ++i) {
    tree += WordBytes(1) + WordBytes(0x80000000);
  }
  BuiltImage built;
  built.sections = {{".rsrc", kReadOnlyData, tree}};
  built.directories = {{0, 0}, {0, 0}, {SectionAddress(0), 100}};
  EXPECT_TRUE(kwa::ReadResources(Read(BuildImage(built))).empty());
}

// A block of a version record; `type` 1 counts the value's length in characters.
std::string VersionBlock(const std::string& key, int type, const std::string& value, const std::string& children) {
  std::string block = WideBytes(key + '\0');
  block.insert(0, 6, '\0');
  Align(block);
  block += value;
  if (!children.empty()) {
    Align(block);
    block += children;
  }
  block.replace(0, 2, HalfBytes(block.size()));
  block.replace(2, 2, HalfBytes(type == 1 ? value.size() / 2 : value.size()));
  block.replace(4, 2, HalfBytes(static_cast<std::size_t>(type)));
  Align(block);
  return block;
}

TEST(PeImage, VersionRecord) {
  std::string fixed = WordBytes(0xFEEF04BD) + WordBytes(0x10000) + WordBytes(0x00010002) + WordBytes(0x00030004) +
                      WordBytes(0x00050006) + WordBytes(0x00070008);
  fixed.resize(52);
  // Umlaut, clef beyond the first plane, half a pair.
  const std::string wide("\xFC\0\x34\xD8\x1E\xDD\x34\xD8\0\0", 10);
  const std::string texts = VersionBlock("FileDescription", 1, WideBytes(std::string("A tool") + '\0'), "") +
                            VersionBlock("Other", 1, wide, "");
  const std::string language = VersionBlock("040904B0", 1, "", texts);
  const std::string record =
      VersionBlock("VS_VERSION_INFO", 0, fixed,
                   VersionBlock("VarFileInfo", 1, "", "") + VersionBlock("StringFileInfo", 1, "", language));
  kwa::VersionRecord version;
  ASSERT_TRUE(kwa::ReadVersionRecord(kwa::ByteSpan(record), &version));
  EXPECT_EQ("1.2.3.4", version.fileVersion);
  EXPECT_EQ("5.6.7.8", version.productVersion);
  EXPECT_EQ("A tool", version.texts["FileDescription"]);
  EXPECT_EQ("\xC3\xBC\xF0\x9D\x84\x9E\xEF\xBF\xBD", version.texts["Other"]);
  EXPECT_FALSE(kwa::ReadVersionRecord(kwa::ByteSpan(record.substr(0, 60)), &version));
}

TEST(PeImage, SignatureAndRelocations) {
  BuiltImage built;
  built.sections = {{".reloc", kReadOnlyData, "relocations"}};
  built.directories.resize(16);
  const std::string unsignedFile = BuildImage(built);
  EXPECT_TRUE(Read(unsignedFile).CertificateTable().Empty());
  EXPECT_FALSE(Read(unsignedFile).HasBaseRelocations());
  built.directories[kwa::kPeSecurityDirectory] = {static_cast<std::uint32_t>(unsignedFile.size()), 9};
  built.directories[kwa::kPeBaseRelocationDirectory] = {SectionAddress(0), 11};
  const std::string file = BuildImage(built) + "signature";
  EXPECT_EQ("signature", Read(file).CertificateTable().Text());
  EXPECT_TRUE(Read(file).HasBaseRelocations());
  built.characteristics |= kwa::kImageFileRelocsStripped;
  EXPECT_FALSE(Read(BuildImage(built)).HasBaseRelocations());
}

}  // namespace
