#include "platform_text.h"

#include <windows.h>

#include <cwchar>

namespace kwa {

std::string ToUtf8(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string result(static_cast<std::size_t>(length) * 3, '\0');
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), static_cast<int>(result.size()),
                                       nullptr, nullptr);
  result.resize(static_cast<std::size_t>(size));
  return result;
}

std::wstring FromUtf8(const std::string& text) {
  std::wstring result(text.size(), L'\0');
  const int size = static_cast<int>(text.size());
  const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), size);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

std::optional<std::wstring> Environment(const wchar_t* name) {
  std::wstring value(32767, L'\0');  // no variable is longer
  value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
  return value.empty() ? std::nullopt : std::optional(value);
}

unsigned long EnvironmentNumber(const wchar_t* name, unsigned long byDefault) {
  const std::wstring value = Environment(name).value_or(L"");
  const bool hexadecimal = value.rfind(L"0x", 0) == 0 || value.rfind(L"0X", 0) == 0;
  wchar_t* end = nullptr;
  const unsigned long number = std::wcstoul(value.c_str(), &end, hexadecimal ? 16 : 10);
  return value.empty() || *end != L'\0' ? byDefault : number;
}

}  // namespace kwa
