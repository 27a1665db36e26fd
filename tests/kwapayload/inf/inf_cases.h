#pragma once

#include <algorithm>
#include <string>
#include <vector>

// INFs and what two readers must read of them: the profile API, which the installer calls, and ReadHostPackageIdentity.
// The expected values are those of Wine 8 with the ANSI code page 1252.

struct InfCase {
  std::string bytes;    // the whole file
  std::string version;  // DriverVer of [Version]
};

// ASCII text as a little-endian UTF-16 file with the byte-order mark.
inline std::string Utf16Inf(const std::string& text) {
  std::string bytes = "\xFF\xFE";
  for (const char character : text) {
    bytes += {character, '\0'};
  }
  return bytes;
}

inline std::vector<InfCase> InfCases() {
  using namespace std::string_literals;
  const struct {
    std::string before;
    std::vector<InfCase> rows;
    std::string after;
  } tables[] = {
      // clang-format off
      // The text after "DriverVer=".
      {"[Version]\r\nDriverVer=", {
      {"02/13/2014,1.0.42.0", "02/13/2014,1.0.42.0"}, {"", ""}, {" \t1 2\t ", "1 2"},
      {"\x01\x08\x1C\x1F\x7F", "\x01\x08\x1C\x1F\x7F"}, {"\xA0" "1\xA0", "\xA0" "1\xA0"}, {"1\x1A" "2", "1\x1A" "2"},
      {"\"1\"", "1"}, {"\" 1 \"", " 1 "}, {"\"\"", ""}, {"\"1'", "\"1'"}, {"'", "'"}, {"\"\"1\"\"", "\"1\""},
      {"1 ; c", "1 ; c"}, {"%name%", "%name%"}, {"a\\\r\nb", "a\\"},
      {"\x80\x81\x8D\x8E\x9F\xA4\xE4\xFF", "\x80\x81\x8D\x8E\x9F\xA4\xE4\xFF"}, {"a\0b"s, "a"}, {"\"a\0b\""s, "\"a"},
      {"\v\f\x1A" "1\x1A\f\v", "1"}, {std::string(259, 'v'), std::string(259, 'v')},
      {std::string(259, 'v') + "w", std::string(259, 'v')}, {"'" + std::string(260, 'v') + "'", std::string(259, 'v')},
      {std::string(258, 'v') + "  w", std::string(258, 'v') + " "},
      }, "\r\n"},
      // Lines of [Version].
      {"[Version]\r\n", {
      {"\x1A\v\f" "DriverVer\f\v\x1A=1", "1"}, {"DRIVERVER=1", "1"}, {"\"DriverVer\"=1", ""},
      {"DriverVers=1\r\nDriverVer=2", "2"}, {"DriverVer", ""}, {"DriverVer=1\r\nDriverVer=2", "1"},
      {"DriverVer\r\nDriverVer=2", ""}, {";DriverVer=1", ""}, {"[x]\r\nDriverVer=2", ""}, {"[x\r\nDriverVer=1", "1"},
      {"DriverVer\0x=1"s, "1"}, {"DriverVer \0=1"s, ""}, {"x\rDriverVer=1\ry", "1"}, {"x\vDriverVer=1", ""},
      {std::string(100000, 'x') + "\r\nDriverVer=1", "1"},
      }, "\r\n"},
      // Whole files.
      {"", {
      {"", ""}, {"[Version]\r\nDriverVer=1", "1"}, {"[Version]\r\nDriverVer", ""},
      {"[ \tVersion\x1A\v]\r\nDriverVer=1\r\n", "1"}, {" \t\x1A[Version]\v \r\nDriverVer=1\r\n", "1"},
      {"[Version\r\nDriverVer=1\r\n", ""}, {"[[Version]\r\nDriverVer=1\r\n", ""},
      {"[Version] x\r\nDriverVer=1\r\n", "1"},
      {"[Version] ; [x]\r\nDriverVer=1\r\n", ""}, {"x[Version]\r\nDriverVer=1\r\n", ""},
      {"[Version\0x]\r\nDriverVer=1\r\n"s, "1"}, {"[Version \0]\r\nDriverVer=1\r\n"s, ""},
      {"[Version]\r\nDriverVer=1\r\n[Version]\r\nDriverVer=2\r\n", "1"},
      {"[Version]\r\n[Version]\r\nDriverVer=2\r\n", ""},
      }, ""},
      // clang-format on
  };
  std::vector<InfCase> cases = {
      {Utf16Inf("[Version]\r\nDriverVer=1\r\n").substr(2), ""}};  // without the byte-order mark
  for (const auto& [before, rows, after] : tables) {
    for (const InfCase& row : rows) {
      const std::string text = before + row.bytes + after;
      cases.push_back({text, row.version});
      // Plain ASCII means the same in UTF-16.
      if (std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; })) {
        cases.push_back({Utf16Inf(text), row.version});
      }
    }
  }
  return cases;
}
