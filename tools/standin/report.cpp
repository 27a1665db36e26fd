#include "report.h"

#include <windows.h>

#include <wincrypt.h>

#include <cstdio>
#include <memory>
#include <vector>

#include "platform_text.h"

namespace kwa {
namespace {

using nlohmann::ordered_json;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

std::string HexText(const std::vector<BYTE>& bytes) {
  std::string text;
  for (const BYTE byte : bytes) {
    char digits[3] = {};
    std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(byte));
    text += digits;
  }
  return text;
}

// The SHA-256 of a file in hexadecimal; empty when the file cannot be read. CryptoAPI, since Windows XP has no CNG.
std::string FileSha256(const std::wstring& path) {
  const File file(_wfopen(path.c_str(), L"rb"));
  HCRYPTPROV provider = 0;
  if (file == nullptr || !CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT)) {
    return {};
  }
  HCRYPTHASH hash = 0;
  bool good = CryptCreateHash(provider, CALG_SHA_256, 0, 0, &hash) != FALSE;
  std::vector<BYTE> buffer(1 << 16);
  while (good) {
    const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), file.get());
    if (size == 0) {
      good = std::ferror(file.get()) == 0;
      break;
    }
    good = CryptHashData(hash, buffer.data(), static_cast<DWORD>(size), 0) != FALSE;
  }
  std::vector<BYTE> digest(32);
  DWORD digestSize = static_cast<DWORD>(digest.size());
  good = good && CryptGetHashParam(hash, HP_HASHVAL, digest.data(), &digestSize, 0);
  if (hash != 0) {
    CryptDestroyHash(hash);
  }
  CryptReleaseContext(provider, 0);
  return good ? HexText(digest) : std::string();
}

ordered_json DescribeFiles(const std::wstring& folder) {
  ordered_json files = ordered_json::array();
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW((folder + L"*").c_str(), &found);
  for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &found)) {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      files.push_back({{"name", ToUtf8(found.cFileName)},
                       {"size", (static_cast<std::uint64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow},
                       {"sha256", FileSha256(folder + found.cFileName)}});
    }
  }
  FindClose(search);
  return files;
}

}  // namespace

ordered_json DescribeRun(const std::wstring& ownFolder) {
  wchar_t program[MAX_PATH] = {};
  wchar_t currentFolder[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  GetCurrentDirectoryW(MAX_PATH, currentFolder);
  return {{"program", ToUtf8(program)},
          {"commandLine", ToUtf8(GetCommandLineW())},
          {"currentFolder", ToUtf8(currentFolder)},
          {"bitness", sizeof(void*) * 8},
          {"files", DescribeFiles(ownFolder)}};
}

bool WriteReport(const ordered_json& report, const std::wstring& ownFolder, const std::wstring& folder) {
  CopyFileW((ownFolder + L"dpinst.xml").c_str(), (folder + L"\\dpinst.xml").c_str(), FALSE);
  const std::string text = report.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
  File file(_wfopen((folder + L"\\report.json").c_str(), L"wb"));
  if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) {
    return false;
  }
  return std::fclose(file.release()) == 0;
}

}  // namespace kwa
