// Small driver packages in an archive, one fault at a time: what the INF names, what the catalogs cover.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "built_archive.h"
#include "built_image.h"
#include "trust/built_signature.h"
#include "verify/verification.h"

namespace {

using Files = std::map<std::string, std::string>;

std::string CatalogOf(const std::vector<std::string>& files, unsigned signerCount = 1,
                      const std::function<std::string(const std::string&)>& timestamp = nullptr) {
  std::string members;
  for (const std::string& file : files) {
    members += Der(kDerSequence, Der(kDerOctets, DigestBytes(file, "SHA256")));
  }
  return BuildSignedData({kTrustListType, TrustList(2, members), signerCount, true, timestamp});
}

struct Package {
  const char* what;
  std::string catalogLines;  // of [Version]
  std::string sourceLines;   // of the INF's end
  std::function<void(Files&)> change;
  std::string findings;  // "code: where" a line, with "?" for a warning
};

std::string FindingsOf(const Package& package) {
  const std::string inf = "[Version]\r\nDriverVer=01/02/2020,1.0\r\nDriverPackageDisplayName=\"Marlin USB\"\r\n" +
                          package.catalogLines + "\r\n[Strings]\r\nname=a\r\n" + package.sourceLines + "\r\n";
  Files files = {{"a.inf", inf}, {"a.sys", "driver"}, {"a.cat", CatalogOf({inf, "driver"})}};
  if (package.change) {
    package.change(files);
  }
  std::vector<ArchiveBody> bodies;
  for (const auto& [name, bytes] : files) {
    bodies.push_back({name, bytes});
  }
  const std::string archive = BuildArchive(bodies);
  std::string text;
  for (const kwa::Finding& finding :
       kwa::VerifyInstaller(kwa::ReadInstallerFile(kwa::ByteSpan(archive), "a.kwap"), {})) {
    const std::size_t hint = finding.what.find("; ");
    text += (finding.severity == kwa::Severity::Error ? "" : "?") + finding.code + ": " + finding.where +
            (hint == std::string::npos ? "" : finding.what.substr(hint)) + "\n";
  }
  return text;
}

TEST(VerifyTrust, Packages) {
  const std::string catalog = "CatalogFile=a.cat";
  const std::string sources = "[SourceDisksNames]\r\n1=disk\r\n[SourceDisksFiles]\r\na.inf=1\r\na.sys=1";
  const std::string twoCatalogs = "CatalogFile.ntx86=a.cat\r\nCatalogFile.ntamd64=b.cat";
  const auto secondCatalog = [](Files& files) { files["b.cat"] = CatalogOf({files["a.inf"]}); };
  // clang-format off
  const Package packages[] = {
      {"good", catalog, sources, nullptr, ""},
      {"comment", "catalogfile = A.cat ; comment", sources, nullptr, ""},
      {"decorated", "CatalogFile.NTx86=a.cat\r\nCatalogFile.ntAMD64 = \"%Name%.c%Name%t\"", sources, nullptr, ""},
      {"all platforms", "CatalogFile.nt=a.cat\r\nCatalogFile=none.cat", sources, nullptr, ""},
      {"no catalog", "CatalogFile.ntia64=a.cat", sources, nullptr, "version-key-missing: package, a.inf\n"},
      {"one of two", "CatalogFile.ntx86=a.cat", sources + "\r\n[Manufacturer]\r\nm=M,NTx86,NTamd64.6.1", nullptr,
       "version-key-missing: package, a.inf\n"},
      {"a name like a platform", "CatalogFile.ntx86=a.cat", sources + "\r\n[Manufacturer]\r\nm=NTamd64Models,NTx86",
       [](Files& files) { files["a.sys"] = "rebuilt"; }, "not-in-catalog: a.sys\n"},
      {"a second INF", catalog, sources, [](Files& files) { files["b.info"] = ""; }, "second-inf: package, a.inf\n"},
      {"two catalogs", twoCatalogs, sources, secondCatalog, "not-in-catalog: a.sys\n"},
      {"two catalogs, a file of one platform", twoCatalogs, "[SourceDisksFiles.x86]\r\na.sys=1", secondCatalog, ""},
      {"subfolder", catalog, "[SourceDisksFiles]\r\na.sys=1,amd64", nullptr, "source-file-in-folder: package, a.inf\n"},
      {"disk's path", catalog, "[SourceDisksNames]\r\n1=\"d,e\",,,\\x\r\n[SourceDisksFiles]\r\na.sys=1", nullptr,
       "source-file-in-folder: package, a.inf\n"},
      {"line ends", catalog, sources,
       [](Files& files) {
         std::string& inf = files["a.inf"];
         inf.erase(std::remove(inf.begin(), inf.end(), '\r'), inf.end());
       },
       "not-in-catalog: a.inf; would be covered with CR LF line ends\n"},
      {"line ends of a driver's text", catalog, sources,
       [](Files& files) {
         files["a.cat"] = CatalogOf({files["a.inf"], "a\nb\n"});
         files["a.sys"] = "a\r\nb\n";
       },
       "not-in-catalog: a.sys; would be covered with LF line ends\n"},
      {"changed driver", catalog, sources, [](Files& files) { files["a.sys"] = "rebuilt"; }, "not-in-catalog: a.sys\n"},
      {"no catalog's bytes", catalog, sources, [](Files& files) { files["a.cat"].resize(100); },
       "catalog-unreadable: a.cat\n"},
      {"unsigned catalog", catalog, sources, [](Files& files) { files["a.cat"] = CatalogOf({files["a.inf"], "driver"}, 0); },
       "catalog-unsigned: a.cat\n"},
      {"broken catalog", catalog, sources, [](Files& files) { files["a.cat"].back() ^= 1; },
       "catalog-signature-broken: a.cat\n"},
      {"another signature's timestamp", catalog, sources,
       [](Files& files) {
         files["a.cat"] =
             CatalogOf({files["a.inf"], "driver"}, 1, [](const std::string&) { return TimestampToken("another"); });
       },
       "?timestamp-broken: a.cat\n"},
      {"catalog of others", catalog, sources, [](Files& files) { files["a.cat"] = CatalogOf({"other"}); },
       "?catalog-of-other-files: a.cat\nnot-in-catalog: a.inf\nnot-in-catalog: a.sys\n"},
      {"broken program", catalog, sources,
       [](Files& files) {
         BuiltImage image;
         image.sections = {{".text", kCode, "code"}};
         image.directories.resize(16);
         image.directories[4] = {static_cast<std::uint32_t>(BuildImage(image).size()), 9};
         files["p.exe"] = BuildImage(image) + WordBytes(9) + WordBytes(0x00020200) + "x";
       },
       "signature-broken: p.exe\n"},
  };
  // clang-format on
  for (const Package& package : packages) {
    EXPECT_EQ(package.findings, FindingsOf(package)) << package.what;
  }
}

}  // namespace
