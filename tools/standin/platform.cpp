#include "platform.h"

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <memory>

namespace kwa {

std::string ToUtf8(const std::wstring& text) {
  std::string result(text.size() * 3, '\0');
  result.resize(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                                   result.data(), static_cast<int>(result.size()), nullptr, nullptr)));
  return result;
}

std::wstring FromUtf8(const std::string& text) {
  const int size = static_cast<int>(text.size());
  std::wstring result(text.size(), L'\0');
  result.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, result.data(), size)));
  return result;
}

std::optional<unsigned long> ParseNumber(const std::wstring& text) {
  const bool hexadecimal = text.rfind(L"0x", 0) == 0 || text.rfind(L"0X", 0) == 0;
  wchar_t* end = nullptr;
  const unsigned long number = std::wcstoul(text.c_str(), &end, hexadecimal ? 16 : 10);
  return text.empty() || *end != L'\0' ? std::nullopt : std::optional(number);
}

std::wstring Environment(const wchar_t* name) {
  std::wstring value(32767, L'\0');  // no variable is longer
  value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
  return value;
}

std::vector<std::wstring> FileNames(const std::wstring& folder, const wchar_t* pattern) {
  std::vector<std::wstring> names;
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW((folder + pattern).c_str(), &found);
  for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &found)) {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      names.emplace_back(found.cFileName);
    }
  }
  FindClose(search);
  return names;
}

std::optional<std::string> ReadWholeFile(const std::wstring& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(_wfopen(path.c_str(), L"rb"), std::fclose);
  if (file == nullptr) {
    return std::nullopt;
  }
  std::fseek(file.get(), 0, SEEK_END);
  std::string bytes(static_cast<std::size_t>(std::ftell(file.get())), '\0');
  std::rewind(file.get());
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
  return bytes;
}

}  // namespace kwa
