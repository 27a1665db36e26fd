// The program around the payload: what of it decides whether two installers have the same.

#include "installer/program_form.h"

#include <gtest/gtest.h>

#include "built_archive.h"
#include "pe/built_image.h"

namespace {

// A program with addresses of the section after the archives, in its code and in the data before the archives.
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
  image.directories[kwa::kPeBaseRelocationDirectory] = {SectionAddress(2) + shift, 20};
  std::string bytes = BuildImage(image);
  PutWord(bytes, bytes.find(".reloc") + 12, SectionAddress(2) + shift);
  return bytes;
}

// The names of the parts that differ.
std::vector<std::string> Differences(const std::string& one, const std::string& other) {
  const auto parts = [](const std::string& bytes) {
    return kwa::ProgramParts(kwa::ReadInstallerFile(kwa::ByteSpan(bytes)).value());
  };
  const std::vector<kwa::ProgramPart> before = parts(one);
  const std::vector<kwa::ProgramPart> after = parts(other);
  EXPECT_EQ(before.size(), after.size());
  std::vector<std::string> names;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!(before[i] == after[i])) {
      names.push_back(before[i].name);
    }
  }
  return names;
}

TEST(ProgramParts, AreTheSameAroundAnotherPayload) {
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
    EXPECT_EQ(Differences(program, other), parts);
  }
}

}  // namespace
