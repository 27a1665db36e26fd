// The program around the payload: what of it counts when two installers are compared.

#include "installer/inspection.h"

#include <gtest/gtest.h>

#include "built_archive.h"
#include "pe/built_image.h"

namespace {

struct Parts {
  std::string a = "a";        // the file in archive A
  std::string code = "\xC3";  // after the addresses of the archives
  std::string afterArchives;  // in their section
  std::uint16_t subsystem = 2;
  std::uint32_t moreMemory = 0;  // of their section, than the archives need
  bool areSwapped = false;       // the addresses of the two archives
  bool isSigned = false;
  std::string beforeSignature;
  std::string atEnd;
};

std::string Installer(const Parts& parts) {
  const std::string archiveA = BuildArchive({{"a", parts.a}});
  const std::string archives = archiveA + BuildArchive({{"b", "b"}});
  std::string payload = archives + parts.afterArchives;
  payload.resize((payload.size() + 511) / 512 * 512);
  const std::string addressA = WordBytes(0x400000 + SectionAddress(3));
  const std::string addressB = WordBytes(0x400000 + SectionAddress(3) + archiveA.size());
  BuiltImage image;
  image.subsystem = parts.subsystem;
  image.sections = {
      {".text", kCode, (parts.areSwapped ? addressB + addressA : addressA + addressB) + parts.code},
      {".rdata", kReadOnlyData, "c"},
      {".reloc", 0x42000040, WordBytes(SectionAddress(0)) + WordBytes(12) + std::string("\0\x30\4\x30", 4)},
      {".payload", kReadOnlyData, payload, archives.size() + parts.moreMemory}};
  image.directories[kwa::kPeBaseRelocationDirectory] = {SectionAddress(2), 12};
  std::string bytes = BuildImage(image);
  if (parts.isSigned) {
    bytes += parts.beforeSignature;
    image.directories[kwa::kPeSecurityDirectory] = {bytes.size(), 16};
    bytes = BuildImage(image) + parts.beforeSignature + WordBytes(16) + "a signature.";
  }
  return bytes + parts.atEnd;
}

kwa::Program Program(const std::string& bytes) {
  return kwa::ReadProgram(kwa::ReadInstallerFile(kwa::ByteSpan(bytes)).value());
}

TEST(ReadProgram, IsTheSameAroundAnotherPayloadAndSignature) {
  // clang-format off
  const std::pair<void (*)(Parts&), std::vector<std::string>> cases[] = {
      {[](Parts& parts) { parts.a = std::string(5001, 'a'); }, {}},
      {[](Parts& parts) { parts.isSigned = true; }, {}},
      {[](Parts& parts) { parts.isSigned = true, parts.beforeSignature = std::string(7, '\0'); }, {}},
      {[](Parts& parts) { parts.isSigned = true, parts.beforeSignature = std::string(8, '\0'); },
       {"the bytes after the last section"}},
      {[](Parts& parts) { parts.isSigned = true, parts.beforeSignature = "7 bytes"; },
       {"the bytes after the last section"}},
      {[](Parts& parts) { parts.code = "\xC2"; }, {".text"}},
      {[](Parts& parts) { parts.afterArchives = "x"; }, {".payload", "the places of the archives"}},
      {[](Parts& parts) { parts.moreMemory = 4; }, {"headers", ".text", ".payload", "the places of the archives"}},
      {[](Parts& parts) { parts.subsystem = 3; }, {"headers"}},
      {[](Parts& parts) { parts.areSwapped = true; }, {"the places of the archives"}},
      {[](Parts& parts) { parts.atEnd = "x"; }, {"the bytes after the last section"}},
  };
  // clang-format on
  const kwa::Program before = Program(Installer({}));
  for (const auto& [change, names] : cases) {
    Parts parts;
    change(parts);
    const kwa::Program after = Program(Installer(parts));
    ASSERT_EQ(before.parts.size(), after.parts.size());
    std::vector<std::string> differing;
    for (std::size_t i = 0; i < before.parts.size(); ++i) {
      if (!(before.parts[i] == after.parts[i])) {
        differing.push_back(before.parts[i].name);
      }
    }
    EXPECT_EQ(names, differing);
    EXPECT_EQ(names.empty(), before.fingerprint == after.fingerprint);
  }
  const std::string archive = BuildArchive({{"a", "a"}});
  EXPECT_TRUE(Program(archive).parts.empty());
  EXPECT_EQ("the bytes after the archive", Program(archive + "x").parts.at(0).name);
}

}  // namespace
