#pragma once

#include <optional>
#include <string>

namespace kwa {

// UTF-16 text as UTF-8, and back. Parts that are no valid text become the replacement character.
std::string ToUtf8(const std::wstring& text);
std::wstring FromUtf8(const std::string& text);

// An environment variable's value; nothing when it is not set or empty.
std::optional<std::wstring> Environment(const wchar_t* name);

// A variable's number, decimal or hexadecimal after 0x; the default when it is not set or not a number.
unsigned long EnvironmentNumber(const wchar_t* name, unsigned long byDefault);

}  // namespace kwa
