// The host's readers of INFs; the Windows tests hold them to the platform's, for many more files.

#include <gtest/gtest.h>

#include "inf/inf_source_files.h"
#include "package/package_identity.h"
#include "inf_cases.h"

namespace {

TEST(ReadHostPackageIdentity, ReadsWhatThePlatformReads) {
  for (const InfCase& expected : InfCases()) {
    SCOPED_TRACE(testing::PrintToString(expected.bytes.substr(0, 300)));
    // A copy on the heap, so that the sanitizer sees every step beyond the file.
    const std::vector<char> bytes(expected.bytes.begin(), expected.bytes.end());
    const kwa::InfText inf(kwa::ByteSpan(std::string_view(bytes.data(), bytes.size())));
    const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(inf);
    EXPECT_EQ(identity.version, expected.version);
    EXPECT_EQ(identity.displayName, expected.displayName);
    EXPECT_EQ(identity.fault, "");
  }
}

// What each Windows reads in its own way is no value that can be relied upon.
TEST(ReadHostPackageIdentity, SaysWhatCannotBeKnown) {
  const std::string text = "[Version]\r\nDriverVer=\"1@\"\r\n[Strings]\r\nx=@\r\n";
  std::string umlaut = Utf16Inf(text);
  umlaut[umlaut.find('@')] = '\xE4';
  std::string elsewhere = Utf16Inf(text);
  elsewhere[elsewhere.rfind('@')] = '\xE4';
  std::string bigEndian = Utf16Inf(text);
  bigEndian.replace(0, 2, "\xFE\xFF");
  const std::pair<std::string, std::string> kCases[] = {
      {"\xEF\xBB\xBF" + text, "1@|begins with the mark of UTF-8, which not every Windows knows"},
      {bigEndian, "|is UTF-16 text in big-endian order, which not every Windows knows"},
      {umlaut, "1?|has characters beyond ASCII in DriverVer, which each Windows reads in its own way"},
      {elsewhere, "1@|"},
  };
  for (const auto& [bytes, shown] : kCases) {
    const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(kwa::InfText(kwa::ByteSpan(bytes)));
    EXPECT_EQ(shown, identity.version + "|" + identity.fault);
  }
}

TEST(ReadInfSourceFiles, ReadsBySetupsRules) {
  const std::string inf =
      "[SourceDisksFiles.AMD64] ; 64-bit\r\n\"b;c%Ext%\" = 1 ; x = 2\r\n;d.sys=1\r\nnone\r\n[SourceDisksFilesX]\r\n"
      "e.sys=1\r\n[ sourcedisksfiles ]\r\n a.sys ; = 1\r\n a.sys=1,,\r\nf=2,.\\x\r\ng=2\r\nh=1,.\r\nj=1,\"\"\r\n"
      "[SourceDisksFiles.ia64]\r\ni.sys=1\r\n[SourceDisksNames.ia64]\r\n1=a,,,\\ia64\r\n[SourceDisksNames]\r\n"
      "1=a,b\r\n2=\"a,b\",,,\\%Dir%\r\n[strings]\r\ndIR=\"i386\"\r\next=.sys";
  for (const std::string& bytes : {inf, Utf16Inf(inf)}) {
    std::string shown;
    for (const kwa::InfSourceFile& file : kwa::ReadInfSourceFiles(kwa::InfText(kwa::ByteSpan(bytes)))) {
      shown += file.name + "|" + file.platform + "|" + file.folder + "\n";
    }
    EXPECT_EQ("b;c.sys|amd64|\na.sys||\nf||i386\\.\\x\ng||i386\nh||\nj||\n", shown);
  }
}

}  // namespace
