#include "inf_cases.h"

#include <algorithm>

namespace {

using namespace std::string_literals;

struct Row {
  std::string text;
  std::string version;
};

// clang-format off
// The text after "DriverVer=".
const Row kValues[] = {
    {"02/13/2014,1.0.42.0", "02/13/2014,1.0.42.0"}, {"", ""}, {" \t1 2\t ", "1 2"},
    {"\x01\x08\x1C\x1F\x7F", "\x01\x08\x1C\x1F\x7F"}, {"\xA0" "1\xA0", "\xA0" "1\xA0"}, {"1\x1A" "2", "1\x1A" "2"},
    {"\"1\"", "1"}, {"\" 1 \"", " 1 "}, {"\"\"", ""}, {"\"1'", "\"1'"}, {"'", "'"}, {"\"\"1\"\"", "\"1\""},
    {"1 ; c", "1 ; c"}, {"%name%", "%name%"}, {"a\\\r\nb", "a\\"},
    {"\x80\x81\x8D\x8E\x9F\xA4\xE4\xFF", "\x80\x81\x8D\x8E\x9F\xA4\xE4\xFF"}, {"a\0b"s, "a"}, {"\"a\0b\""s, "\"a"},
    {"\v\f\x1A" "1\x1A\f\v", "1"}, {std::string(259, 'v'), std::string(259, 'v')},
    {std::string(259, 'v') + "w", std::string(259, 'v')}, {"'" + std::string(260, 'v') + "'", std::string(259, 'v')},
    {std::string(258, 'v') + "  w", std::string(258, 'v') + " "},
};

// Lines of [Version].
const Row kLines[] = {
    {"\x1A\v\f" "DriverVer\f\v\x1A=1", "1"}, {"DRIVERVER=1", "1"}, {"\"DriverVer\"=1", ""},
    {"DriverVers=1\r\nDriverVer=2", "2"}, {"DriverVer", ""}, {"DriverVer=1\r\nDriverVer=2", "1"},
    {"DriverVer\r\nDriverVer=2", ""}, {";DriverVer=1", ""}, {"[x]\r\nDriverVer=2", ""}, {"[x\r\nDriverVer=1", "1"},
    {"DriverVer\0x=1"s, "1"}, {"DriverVer \0=1"s, ""}, {"x\rDriverVer=1\ry", "1"}, {"x\vDriverVer=1", ""},
    {std::string(100000, 'x') + "\r\nDriverVer=1", "1"},
};

// Whole files.
const Row kFiles[] = {
    {"", ""}, {"[Version]\r\nDriverVer=1", "1"}, {"[Version]\r\nDriverVer", ""},
    {"[ \tVersion\x1A\v]\r\nDriverVer=1\r\n", "1"}, {" \t\x1A[Version]\v \r\nDriverVer=1\r\n", "1"},
    {"[Version\r\nDriverVer=1\r\n", ""}, {"[[Version]\r\nDriverVer=1\r\n", ""}, {"[Version] x\r\nDriverVer=1\r\n", "1"},
    {"[Version] ; [x]\r\nDriverVer=1\r\n", ""}, {"x[Version]\r\nDriverVer=1\r\n", ""},
    {"[Version\0x]\r\nDriverVer=1\r\n"s, "1"}, {"[Version \0]\r\nDriverVer=1\r\n"s, ""},
    {"[Version]\r\nDriverVer=1\r\n[Version]\r\nDriverVer=2\r\n", "1"},
    {"[Version]\r\n[Version]\r\nDriverVer=2\r\n", ""},
};
// clang-format on

}  // namespace

std::string Utf16Inf(const std::string& text) {
  std::string bytes = "\xFF\xFE";
  for (const char character : text) {
    bytes += {character, '\0'};
  }
  return bytes;
}

std::vector<InfCase> InfCases() {
  std::vector<InfCase> cases = {
      {"; an INF\r\n[Version]\r\nSignature=\"$WINDOWS NT$\"\r\nProvider = %KWA%\r\nDriverVer = 02/13/2014,1.0.42.0\r\n"
       "DriverPackageDisplayName = \"Marlin USB\"\r\n[Strings]\r\nKWA=\"KWA\"\r\n",
       "02/13/2014,1.0.42.0", "Marlin USB"},
      {"[Version]\r\nDriverVer=1\r\n[Strings]\r\nDriverPackageDisplayName=x\r\n", "1", ""},
      {Utf16Inf("[Version]\r\nDriverVer=1\r\n").substr(2), "", ""},  // without the byte-order mark
  };
  for (const Row& row : kValues) {
    cases.push_back({"[Version]\r\nDriverVer=" + row.text + "\r\n", row.version, ""});
  }
  for (const Row& row : kLines) {
    cases.push_back({"[Version]\r\n" + row.text + "\r\n", row.version, ""});
  }
  for (const Row& row : kFiles) {
    cases.push_back({row.text, row.version, ""});
  }
  // Plain ASCII means the same in UTF-16.
  for (std::size_t i = 0, count = cases.size(); i < count; ++i) {
    const InfCase narrow = cases[i];
    if (std::all_of(narrow.bytes.begin(), narrow.bytes.end(), [](char c) { return (c & 0x80) == 0; })) {
      cases.push_back({Utf16Inf(narrow.bytes), narrow.version, narrow.displayName});
    }
  }
  return cases;
}
