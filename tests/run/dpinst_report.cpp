#include "dpinst_report.h"

#include <windows.h>

#include <wincrypt.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "test_folder.h"

DpinstReport ReadReport(const std::string& folder) {
  DpinstReport report;
  const std::string text = ReadWholeFile(folder + "\\report.json");
  const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
  if (json.is_discarded()) {
    ADD_FAILURE() << "no report in " << folder;
    return report;
  }
  report.program = json.at("program");
  report.commandLine = json.at("commandLine");
  report.currentFolder = json.at("currentFolder");
  report.bitness = json.at("bitness");
  for (const nlohmann::json& file : json.at("files")) {
    report.files[file.at("name")] =
        std::to_string(file.at("size").get<std::uint64_t>()) + " " + file.at("sha256").get<std::string>();
  }
  if (Exists(folder + "\\dpinst.xml")) {
    report.document = ReadWholeFile(folder + "\\dpinst.xml");
  }
  return report;
}

std::string Fingerprint(const std::string& contents) {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  BYTE digest[32] = {};
  DWORD digestSize = sizeof digest;
  EXPECT_TRUE(CryptAcquireContextA(&provider, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT));
  EXPECT_TRUE(CryptCreateHash(provider, CALG_SHA_256, 0, 0, &hash));
  EXPECT_TRUE(
      CryptHashData(hash, reinterpret_cast<const BYTE*>(contents.data()), static_cast<DWORD>(contents.size()), 0));
  EXPECT_TRUE(CryptGetHashParam(hash, HP_HASHVAL, digest, &digestSize, 0));
  CryptDestroyHash(hash);
  CryptReleaseContext(provider, 0);
  std::string text = std::to_string(contents.size()) + " ";
  for (const BYTE part : digest) {
    constexpr char kDigits[] = "0123456789abcdef";
    text += kDigits[part >> 4];
    text += kDigits[part & 15];
  }
  return text;
}
