#include "report.h"

#include <windows.h>

#include <wincrypt.h>

#include <cstdio>

#include "platform.h"

namespace kwa {
namespace {

using nlohmann::ordered_json;

// The digest in hexadecimal. By CryptoAPI, because Windows XP has nothing newer.
std::string Sha256(const std::string& bytes) {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  BYTE digest[32] = {};
  DWORD size = sizeof digest;
  std::string text;
  CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT);
  CryptCreateHash(provider, CALG_SHA_256, 0, 0, &hash);
  CryptHashData(hash, reinterpret_cast<const BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), 0);
  if (CryptGetHashParam(hash, HP_HASHVAL, digest, &size, 0)) {
    for (const BYTE byte : digest) {
      char digits[3] = {};
      std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(byte));
      text += digits;
    }
  }
  CryptDestroyHash(hash);
  CryptReleaseContext(provider, 0);
  return text;
}

}  // namespace

ordered_json DescribeRun(const std::wstring& ownFolder) {
  wchar_t program[MAX_PATH] = {};
  wchar_t currentFolder[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  GetCurrentDirectoryW(MAX_PATH, currentFolder);
  ordered_json files = ordered_json::array();
  for (const std::wstring& name : FileNames(ownFolder, L"*")) {
    const std::string bytes = ReadWholeFile(ownFolder + name).value_or("");
    files.push_back({{"name", ToUtf8(name)}, {"size", bytes.size()}, {"sha256", Sha256(bytes)}});
  }
  return {{"program", ToUtf8(program)},
          {"commandLine", ToUtf8(GetCommandLineW())},
          {"currentFolder", ToUtf8(currentFolder)},
          {"bitness", sizeof(void*) * 8},
          {"files", files}};
}

bool WriteReport(const ordered_json& report, const std::wstring& ownFolder, const std::wstring& folder) {
  CopyFileW((ownFolder + L"dpinst.xml").c_str(), (folder + L"\\dpinst.xml").c_str(), FALSE);
  std::FILE* const file = _wfopen((folder + L"\\report.json").c_str(), L"wb");
  if (file == nullptr) {
    return false;
  }
  const std::string text = report.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
  const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && written;
}

}  // namespace kwa
