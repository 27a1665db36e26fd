#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kwa {

// Converts UTF-16 to UTF-8, and back. FromUtf8 returns an empty text when its argument is not UTF-8.
std::string ToUtf8(const std::wstring& text);
std::wstring FromUtf8(const std::string& text);

// A number in decimal, or in hexadecimal after 0x; nothing when the text is anything else.
std::optional<unsigned long> ParseNumber(const std::wstring& text);

// An environment variable's value; empty when it is not set.
std::wstring Environment(const wchar_t* name);

// The names of the files in a folder that match a pattern. The folder ends in a separator.
std::vector<std::wstring> FileNames(const std::wstring& folder, const wchar_t* pattern);

// A file's bytes; nothing when it cannot be opened.
std::optional<std::string> ReadWholeFile(const std::wstring& path);

}  // namespace kwa
