// What an INF says of its package, for each platform: the catalog, the devices, the files on the medium and the copies.
#include "inf/platform_inf.h"

#include <gtest/gtest.h>

namespace {

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

}  // namespace
