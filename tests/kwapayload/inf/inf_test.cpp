// How Setup splits an INF into sections, lines and fields, and what it refuses: the rows agree with Wine 8's setupapi,
// except for the limits of Windows Vista and the warnings. What an INF says of its package, for each platform: the
// catalog, the devices, the files on the medium and the copies. What the host reads of an INF in place of the
// installer: the Windows tests compare this with the platform for many more files.

#include <gtest/gtest.h>

#include "built_archive.h"
#include "inf/platform_inf.h"
#include "inf/setup_inf.h"
#include "inf_cases.h"
#include "package/package_identity.h"

namespace {

using namespace std::string_literals;

const std::string kHeader = "[Version]\r\nSignature=\"$CHICAGO$\"\r\n";

// Each line of [x] as "number key=value|value", and then the faults as "severity code:place".
std::string Show(const std::string& bytes) {
  const kwa::SetupInf inf{kwa::InfText(kwa::ByteSpan(bytes))};
  std::string shown;
  for (const kwa::InfLine& line : inf.Lines("x")) {
    shown += std::to_string(line.number) + " " + line.key + "=" + line.values[0];
    for (std::size_t i = 1; i < line.values.size(); ++i) {
      shown += "|" + line.values[i];
    }
    shown += "\n";
  }
  for (const kwa::Finding& fault : inf.Faults()) {
    shown += (fault.severity == kwa::Severity::Error ? "ERROR " : "warning ") + fault.code + ":" + fault.where + "\n";
  }
  return shown;
}

TEST(SetupInf, ReadsLinesAsSetupDoes) {
  // The lines after a header and "[x]" in line 3.
  const std::pair<std::string, std::string> cases[] = {
      {"a = b,c , d e\t\r\n\r\n;\r\n x\v\r\n", "4 a=b|c|d e\n7 x=x\n"},
      {"a,b=c\n=d\ne=\nf=,g,\n,", "4 =a|b=c\n5 =d\n6 e=\n7 f=|g|\n8 =|\n"},
      {"a=\"b;,=\"\"c\"\" \" ; d\n\"e=f\" = g\" \"h\ni=\"\"j\n", "4 a=b;,=\"c\" \n5 e=f=g h\n6 i=j\n"},
      {"a=\"b\\\nc=d\n", "4 a=b\\\n5 c=d\nwarning inf-quote-open:line 4\n"},
      {"a=b \\ \n  c,\\;d\n \\\ne\\\\\n;\nf\\ g=\\h\n", "4 a=bc|e\n9 f\\ g=\\h\n"},
      {"a=b\\", "4 a=b\n"},
      {"1=disk,,,\\\n[y]\na=1\n", "4 1=disk|||[y]\n6 a=1\nwarning inf-section-continued:line 5\n"},
      {"a=1\n[y]\nb=2\n [X] c\nd=3\n", "4 a=1\n8 d=3\n"},
      {"a=1\n[ x ]\nb=2\n[x;]\nc=3\n[\"x\"]\nd=4\n[[x]\ne=5\n", "4 a=1\n"},
      {"a=1\x1A\nb=2\n", "4 a=1\n"},
      {"a=1\rb=2\n", "4 a=1\rb=2\nwarning inf-lone-cr:line 4\n"},
      {"a=1\0b\n"s, "4 a=1\0b\nwarning inf-nul:line 4\n"s},
      {"a=%S%%%%t%,\"%s%\",%u%s%,%S,%s;%\n%s%=1\n[Strings]\ns=\"1,2\"\ns=3\nT=%s%\n",
       "4 a=1,2%%s%|1,2|%u%s%|%S|%s\n5 %s%=1\n"},
      {"a=" + std::string(511, 'v') + "\n", "4 a=" + std::string(511, 'v') + "\n"},
      {"a=" + std::string(5000, 'v') + "\n", "4 a=" + std::string(4095, 'v') + "\nwarning inf-field-long:line 4\n"},
      {"a=%s%%s%\n[Strings]\ns=" + std::string(4000, 'v') + "\n",
       "4 a=" + std::string(4095, 'v') + "\nwarning inf-field-long:line 6\n"},
  };
  for (const auto& [lines, shown] : cases) {
    SCOPED_TRACE(lines.substr(0, 300));
    const std::string inf = kHeader + "[x]\n" + lines;
    EXPECT_EQ(Show(inf), shown);
    EXPECT_EQ(Show(Utf16Inf(inf)), shown);
  }
}

TEST(SetupInf, RefusesWhatSetupRefuses) {
  const std::pair<std::string, std::string> cases[] = {
      {"[version]\nsignature = $windows nt$,x\n", ""},
      {"[Version]\na=b\n[VERSION]\nSignature=\"$Windows 95$\"\n[" + std::string(255, 'n') + "]\n", ""},
      {"", "ERROR inf-signature:\n"},
      {"[Version]\nSignature\n", "ERROR inf-signature:line 2\n"},
      {"[Version]\nSignature=x\nSignature=$CHICAGO$\n", "ERROR inf-signature:line 2\n"},
      {"[x]\nSignature=$CHICAGO$\n", "2 Signature=$CHICAGO$\nERROR inf-signature:\n"},
      {"; a\n\nb\nc\n" + kHeader, "ERROR inf-text-first:line 3\n"},
      {kHeader + "[a\n[b]\n[c\n", "ERROR inf-section-open:line 3\n"},
      {kHeader + "[" + std::string(256, 'n') + "]\n", "ERROR inf-section-long:line 3\n"},
  };
  for (const auto& [inf, shown] : cases) {
    SCOPED_TRACE(inf.substr(0, 300));
    EXPECT_EQ(Show(inf), shown);
  }
}

TEST(SetupInf, SaysThatALimitIsMet) {
  // With the header, three lines and one value come before.
  const std::pair<std::string, std::string> cases[] = {
      {Repeated(200000, "\n"), ""},
      {Repeated(99997, "a\n"), ""},
      {Repeated(99998, "a\n"), "inf-too-large"},
      {Repeated(99998, "[y]\n"), "inf-too-large"},
      {Repeated(199998, ","), ""},
      {Repeated(199999, ","), "inf-too-large"},
      {"a=" + Repeated(5000, "%s%,") + "\n[Strings]\ns=" + std::string(500, 's'), ""},
      {"a=" + Repeated(50000, "%s%,") + "\n[Strings]\ns=" + std::string(500, 's'), "inf-too-large"},
      {"[Strings]\ns=" + std::string(400, 's') + "\n" + Repeated(6000, "k=" + Repeated(8, "%s%") + "\n"), ""},
  };
  for (const auto& [lines, code] : cases) {
    const std::string inf = kHeader + "[x]\n" + lines;
    const kwa::SetupInf parsed{kwa::InfText(kwa::ByteSpan(inf))};
    EXPECT_EQ(parsed.Faults().Empty() ? "" : parsed.Faults().begin()->code, code) << lines.substr(0, 20);
  }
}

struct Case {
  std::string text, x86, amd64;
};

void ExpectShown(const std::vector<Case>& cases, std::string (*show)(const kwa::PlatformInf&)) {
  for (const Case& test : cases) {
    const kwa::SetupInf inf{kwa::InfText(kwa::ByteSpan(test.text))};
    EXPECT_EQ(show(kwa::ReadPlatformInf(inf, kwa::InfPlatform::X86)), test.x86) << test.text;
    EXPECT_EQ(show(kwa::ReadPlatformInf(inf, kwa::InfPlatform::Amd64)), test.amd64) << test.text;
  }
}

TEST(PlatformInf, NamesTheMostDecoratedCatalog) {
  ExpectShown(
      {
          {"[Version]\nCatalogFile=a", "a", "a"},
          {"[Version]\nCATALOGFILE=%c%\nCatalogFile.NTamd64=\\\n b\n[Strings]\nc=d", "d", "b"},
          {"[Version]\nCatalogFile.ntx86=a\nCatalogFile.nt=b\nCatalogFile=c", "a", "b"},
          {"[Version]\nCatalogFile.ntx86=a\nCatalogFile.ntia64=c", "a", ""},
          {"[Version]\nCatalogFile.ntx86=\nCatalogFile.ntx86=b\nCatalogFile=c,d\nCatalogFile=e", "c", "c"},
      },
      [](const kwa::PlatformInf& inf) { return inf.catalogName; });
}

TEST(PlatformInf, FindsTheDiskOfEachSourceFile) {
  const std::string both =
      "6 f|0x3|i386\\.\\x\n7 h|1|\n8 j|1|\n9 none|none|no disk|\n10 k|4|no disk|\n11 l||no disk|\n"
      "12 m|-1|no disk|\n13 n|1x|no disk|\n14 %d%|1|\n";
  ExpectShown(
      {{"[SourceDisksFiles.AMD64]\nA.sys = 02\n\"b;c.sys\" = 1 ; x = 2\n"              // lines 2 and 3
        "[sourcedisksfiles]\na.sys=1,,\nf=0x3,.\\x\nh=1,.\nj=1,\"\"\nnone\nk=4\nl=\n"  // from 5
        "m=-1\nn=1x\n%d%=1\nF=1\no,p=1\n"                                              // from 12
        "[SourceDisksFiles.ia64]\ni.sys=1\n[SourceDisksNames.ia64]\n1=a,,,\\ia64\n[SourceDisksNames.x86]\n2=\n"
        "[SourceDisksNames.amd64]\n2=a,,,\"\\%d%\\\"\n[SourceDisksNames]\n01=a,b\n2=a,,,hidden\n3=\"a,b\",,,\\%d%\n"
        "[Strings]\nd=\"i386\"\n",
        "5 a.sys|1|\n" + both, "2 A.sys|02|i386\n3 b;c.sys|1|\n" + both}},
      [](const kwa::PlatformInf& inf) {
        std::string shown;
        for (const kwa::InfSourceFile& file : inf.sourceFiles) {
          shown += std::to_string(file.line) + " " + file.name + "|" + file.disk +
                   (file.isDiskListed ? "|" : "|no disk|") + file.folder + "\n";
        }
        return shown;
      });
}

TEST(PlatformInf, HasTheModelsOfItsDecorations) {
  ExpectShown(
      {
          {"[Manufacturer]\n%k%=M\n[M]\nd=I,H,C1,C2\ne=J,,h,H2\n[M.NTamd64]\nd=K,N\n", "|I J |H C1 C2 H2 |", "|||"},
          {"[Manufacturer]\nM\n[M]\nd=I\n", "|I ||", "|||"},
          {"[Manufacturer]\nk=M,NTx86,ntAMD64.6.1\n[M.ntx86]\nd=I,H\n[M.NTamd64.6.1]\nd=I,H2\nd=i,H\n", "NTx86 |I |H |",
           "ntAMD64.6.1 |I |H2 H |"},
          {"[Manufacturer]\nk=M,NT.5.1,NT,NTx86.6.0,NTia64,NTamd6\n[M]\nd=I,1\n[M.NT.5.1]\nd=I,2\n[M.NTx86.6.0]\n"
           "[M.NTia64]\nd=I,3\n[M.NTamd6]\nd=I,4\n",
           "NT.5.1 |I |1 2 |", "|||"},
          {"[Manufacturer]\nk=M,NTamd64....0x80,NTamd64\nl=N,NTamd64\n[M.NTamd64....0x80]\n[N.NTamd64]\nd=I,1\n", "|||",
           "NTamd64 |I |1 |"},
          {"[M]\nd=I,H\n", "|||", "|||"},
      },
      [](const kwa::PlatformInf& inf) {
        std::string shown;
        for (const auto& list : {inf.windowsVersions, inf.installSections, inf.hardwareIds}) {
          for (const std::string& text : list) {
            shown += text + " ";
          }
          shown += "|";
        }
        return shown;
      });
}

TEST(PlatformInf, CopiesTheFilesOfItsInstallSections) {
  std::vector<Case> cases = {
      {"[I]\nCopyFiles=@a.sys,L\ncopyfiles=l,@A.sys\nAddReg=N\n[L]\nb,,,2\nc,d\nb,B\n,e\n[N]\nf\n",
       "8 a.sys>a.sys 12 b>b 13 d>c ", "8 a.sys>a.sys 12 b>b 13 d>c "},
      {"[I]\nCopyFiles=@a\n[I.NT]\nCopyFiles=@b\n[I.ntAMD64]\nCopyFiles=@c\n", "10 b>b ", "12 c>c "},
      {"[I]\nCopyFiles=@a\n[I.NTx86]\n[I.NTia64]\nCopyFiles=@b\n[I.CoInstallers]\nCopyFiles=@c\n", "", "8 a>a 13 c>c "},
      {"[I.NT]\nCopyFiles=%l%\n[I.NT.CoInstallers]\nCopyFiles=@c\n[L]\na\n[L.NTx86]\nb\n[Strings]\nl=L\n",
       "12 a>a 10 c>c ", "12 a>a 10 c>c "},
      {"[J]\nCopyFiles=@a\n[ClassInstall32.NTx86]\nCopyFiles=@b\n[DefaultInstall]\nCopyFiles=@c\n", "10 b>b ", ""},
  };
  for (Case& test : cases) {  // six lines come before
    test.text.insert(0, "[Manufacturer]\nk=M,NTx86,NTamd64\n[M.NTx86]\nd=I,H\n[M.NTamd64]\nd=I,H\n");
  }
  ExpectShown(cases, [](const kwa::PlatformInf& inf) {
    std::string shown;
    for (const kwa::InfCopiedFile& file : inf.copiedFiles) {
      shown += std::to_string(file.line) + " " + file.source + ">" + file.target + " ";
    }
    return shown;
  });
}

TEST(ReadHostPackageIdentity, ReadsWhatThePlatformReads) {
  for (const InfCase& expected : InfCases()) {
    SCOPED_TRACE(testing::PrintToString(expected.bytes.substr(0, 300)));
    // A copy on the heap, so that the sanitizer sees every access after the end of the file.
    const std::vector<char> bytes(expected.bytes.begin(), expected.bytes.end());
    const kwa::InfText inf(kwa::ByteSpan(std::string_view(bytes.data(), bytes.size())));
    const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(inf);
    EXPECT_EQ(identity.version.text, expected.version);
    EXPECT_TRUE(identity.certainty);
  }
}

TEST(ReadHostPackageIdentity, KnowsWhatEachWindowsReadsInItsOwnWay) {
  const std::string text = "[Version]\r\nDriverVer=1@\r\n";
  std::string umlaut = Utf16Inf(text);
  umlaut[umlaut.find('@')] = '\xE4';
  const std::pair<std::string, std::string> cases[] = {
      {"\xEF\xBB\xBF" + text, "1@"}, {umlaut, "1?"}, {"\xFE\xFF" + Utf16Inf(text).substr(2), ""}};
  for (const auto& [bytes, version] : cases) {
    const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(kwa::InfText(kwa::ByteSpan(bytes)));
    EXPECT_EQ(identity.version.text, version);
    EXPECT_FALSE(identity.certainty);
  }
}

std::string VersionText(const std::string& driverVer) {
  const std::optional<kwa::DriverVersion> version = kwa::ReadDriverVersion(driverVer);
  return version ? kwa::VersionText(*version) : "";
}

TEST(DriverVersion, IsOfADateThatExistsAndOneToFourNumbers) {
  // clang-format off
  const std::pair<const char*, const char*> cases[] = {
      {"02/13/2014,1.0.42.0", "1.0.42.0"}, {"02/29/2012,1", "1.0.0.0"}, {"12-31-1999 , 65535.007 ; built", "65535.7.0.0"},
      {"02/29/2014,1", ""}, {"02/29/1900,1", ""}, {"02/29/2000,1", "1.0.0.0"}, {"13/01/2014,1", ""},
      {"00/01/2014,1", ""}, {"04/00/2014,1", ""}, {"01/01/0000,1", ""}, {"2/13/2014,1", ""}, {"02/13/14,1", ""},
      {"02/13/2014", ""}, {"02/13/2014,1.", ""}, {"02/13/2014,65536", ""}, {"02/13/2014,1.2.3.4.5", ""},
      {"02/13/2014,1.0.42.0 beta", ""}, {"2014/02/13,1", ""},
  };
  // clang-format on
  for (const auto& [driverVer, version] : cases) {
    EXPECT_EQ(VersionText(driverVer), version) << driverVer;
  }
  for (const std::string last :
       {"01/31", "02/28", "03/31", "04/30", "05/31", "06/30", "07/31", "08/31", "09/30", "10/31", "11/30", "12/31"}) {
    std::string dayAfter = last;
    ++dayAfter.back();
    EXPECT_EQ(VersionText(last + "/2014,1"), "1.0.0.0") << last;
    EXPECT_EQ(VersionText(dayAfter + "/2014,1"), "") << dayAfter;
  }
}

}  // namespace
