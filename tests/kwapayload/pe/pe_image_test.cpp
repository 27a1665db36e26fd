// The reader of executables: headers, imports, resources.

#include "pe/pe_image.h"

#include <gtest/gtest.h>

#include "built_archive.h"
#include "built_image.h"
#include "pe/pe_imports.h"
#include "pe/pe_resources.h"

namespace {

TEST(PeImage, ImagesAndNone) {
  BuiltImage built;
  built.sections.resize(97, {".x", kReadOnlyData, ""});
  const std::string many = BuildImage(built);
  built.sections.resize(96);
  const std::string good = BuildImage(built);
  const std::pair<std::string, std::string> cases[] = {
      {good, ""},
      {"M", "is no Windows program"},
      {Replaced(good, 0x3C, WordBytes(0xFFFFFFFC)), "is no Windows program, only a DOS one"},
      {good.substr(0, 0x80 + 20), "is no Windows program, only a DOS one"},
      {Replaced(good, 0x80 + 24, "\x07"), "has no optional header of a Windows program"},
      {good.substr(0, 0x80 + 24 + 96 + 39), "ends within the headers of a Windows program"},
      {many, "has 97 sections; Windows loads at most 96"},
  };
  for (const auto& [file, fault] : cases) {
    const auto image = kwa::ReadPeImage(kwa::ByteSpan(file));
    EXPECT_EQ(fault, image ? "" : image.error().what);
  }
}

// A section with the import of two functions of K.dll, by name and by ordinal, and delayed ones of D.dll and E.dll.
// Old linkers wrote addresses that include the image base into the delayed ones.
std::string ImportSection(bool isPlus, std::uint32_t delayBase) {
  const std::uint32_t base = SectionAddress(0);
  const auto thunk = [isPlus](std::uint32_t low, bool isOrdinal) {
    const std::string high = WordBytes(isOrdinal ? 0x80000000U : 0);
    return isPlus ? WordBytes(low) + high : WordBytes(isOrdinal ? low | 0x80000000U : low);
  };
  std::string bytes(440, '\0');
  const auto put = [&bytes](std::size_t at, const std::string& text) { bytes.replace(at, text.size(), text); };
  put(0, WordBytes(base + 100) + std::string(8, '\0') + WordBytes(base + 200) + WordBytes(base + 100));
  put(100, thunk(base + 220, false) + thunk(7, true));
  put(200, "K.dll");
  put(222, "Function");
  for (const std::uint32_t i : {0U, 1U}) {
    put(240 + 32 * i, WordBytes(delayBase == 0 ? 1 : 0) + WordBytes(delayBase + base + 340 + 10 * i) + WordBytes(0) +
                          WordBytes(0) + WordBytes(delayBase + base + 360));
  }
  put(340, std::string("D.dll") + std::string(5, '\0') + "E.dll");
  put(360, thunk(delayBase + base + 400, false));
  put(402, "Late");
  return bytes;
}

std::string Imports(const std::string& section, bool isPlus, std::uint32_t address = SectionAddress(0)) {
  BuiltImage built;
  built.isPlus = isPlus;
  built.sections = {{".idata", kWritableData, section}};
  built.directories[kwa::kPeImportDirectory] = {address, 40};
  // The table ends before the number of directories that it gives, and after this one.
  built.directories.resize(kwa::kPeDelayImportDirectory);
  built.directories.emplace_back(SectionAddress(0) + 240, 96);
  const std::string file = Replaced(BuildImage(built), isPlus ? 0x104 : 0xF4, WordBytes(16));
  const kwa::ImportTable table = kwa::ReadImports(kwa::ReadPeImage(kwa::ByteSpan(file)).value());
  std::string text;
  for (const auto& library : table.libraries) {
    text += library.name + ":";
    for (const std::string& function : library.functions) {
      text += " " + function;
    }
    text += ", ";
  }
  return text + (table.isComplete ? "" : "incomplete");
}

TEST(PeImage, Imports) {
  const std::string all = "K.dll: Function #7, D.dll: Late, E.dll: Late, ";
  EXPECT_EQ(all, Imports(ImportSection(false, 0), false));
  EXPECT_EQ(all, Imports(ImportSection(true, 0), true));
  EXPECT_EQ(all, Imports(ImportSection(false, 0x400000), false));
  // Tables that lead nowhere.
  EXPECT_EQ(": , incomplete", Imports(ImportSection(false, 0).substr(0, 104), false));
  EXPECT_EQ("D.dll: Late, E.dll: Late, incomplete", Imports(ImportSection(false, 0), false, 0x70000000));
  const std::string endless = Imports(std::string(400000, '\x11'), false);
  EXPECT_EQ("incomplete", endless.substr(endless.rfind(' ') + 1));
}

std::vector<std::string> Manifests(const std::string& tree) {
  BuiltImage built;
  AddTree(tree, built);
  const std::string file = BuildImage(built);
  std::vector<std::string> texts;
  for (const kwa::PeResource& resource : kwa::ReadResources(kwa::ReadPeImage(kwa::ByteSpan(file)).value())) {
    EXPECT_EQ(kwa::kResourceTypeManifest, resource.type);
    texts.emplace_back(resource.bytes.Text());
  }
  return texts;
}

TEST(PeImage, Resources) {
  constexpr std::uint32_t kDirectory = 0x80000000;
  const std::string branches = ResourceBranch(24, kDirectory | 24) + ResourceBranch(1, kDirectory | 48);
  const std::string data = WordBytes(SectionAddress(0) + 88) + WordBytes(4) + std::string(8, '\0') + "dataMORE";
  EXPECT_EQ(std::vector<std::string>{"data"}, Manifests(branches + ResourceBranch(0x409, 72) + data));
  // A tree that ends a level too early, and one with a level too many.
  EXPECT_TRUE(Manifests(ResourceBranch(24, 24) + data).empty());
  EXPECT_TRUE(Manifests(branches + ResourceBranch(0x409, kDirectory | 72) + ResourceBranch(1, 72) + data).empty());
  // A tree with branches that lead back to its root.
  const std::string circle =
      std::string(14, '\0') + HalfBytes(0xFFFF) + Repeated(0xFFFF, WordBytes(1) + WordBytes(kDirectory));
  EXPECT_TRUE(Manifests(circle).empty());
}

TEST(PeImage, VersionRecord) {
  const std::string whole = BuildVersionRecord({{"CompanyName", "K\xC3\xA4"}, {"FileVersion", "1.2"}});
  BuiltImage built;
  AddResource(kwa::kResourceTypeVersion, whole, built);
  const std::string file = BuildImage(built);
  const auto record = kwa::FileVersionRecord(kwa::ByteSpan(file));
  ASSERT_TRUE(record);
  EXPECT_EQ("1.2.3.4 1.2.3.4 K\xC3\xA4 1.2 ", record->fileVersion + " " + record->productVersion + " " +
                                                  record->Text("CompanyName") + " " + record->Text("FileVersion") +
                                                  " " + record->Text("none"));
  // UTF-16 that is no text: a pair, halves of a pair.
  const std::pair<std::string, std::string> kTexts[] = {
      {std::string("\x34\xD8\0\xDC\x1E\xDD", 6), "\xF0\x9D\x80\x80\xEF\xBF\xBD"},
      {std::string("\0\xD8z\0\x34\xD8", 6), "\xEF\xBF\xBDz\xEF\xBF\xBD"},
  };
  for (const auto& [units, text] : kTexts) {
    const std::string changed = Replaced(whole, whole.rfind(Utf16("1.2")), units);
    EXPECT_EQ(text, kwa::ReadVersionRecord(kwa::ByteSpan(changed)).value().Text("FileVersion"));
  }
}

}  // namespace
