#include "inf_cases.h"

#include <algorithm>

namespace {

using namespace std::string_literals;

struct Row {
  const char* name;
  std::string text;
  std::string value;
};

// What stands behind "DriverVer=".
// clang-format off
const Row kValues[] = {
    {"Plain",                    "02/13/2014,1.0.42.0",   "02/13/2014,1.0.42.0"},
    {"Empty",                    "",                      ""},
    {"BlanksAround",             " \t1 2\t ",             "1 2"},
    {"OtherControlsAround",      "\x01\x08\x1C\x1F\x7F",  "\x01\x08\x1C\x1F\x7F"},
    {"NoBreakSpaceAround",       "\xA0" "1\xA0",          "\xA0" "1\xA0"},
    {"EndOfFileMarkInside",      "1\x1A" "2",             "1\x1A" "2"},
    {"DoubleQuotes",             "\"1\"",                 "1"},
    {"SingleQuotes",             "'1'",                   "1"},
    {"BlanksAroundQuotes",       " \"1\" \t",             "1"},
    {"BlanksInQuotes",           "\" 1 \"",               " 1 "},
    {"EmptyDoubleQuotes",        "\"\"",                  ""},
    {"MixedQuotes",              "\"1'",                  "\"1'"},
    {"OpeningQuoteOnly",         "\"1",                   "\"1"},
    {"ClosingQuoteOnly",         "1'",                    "1'"},
    {"SingleQuoteAlone",         "'",                     "'"},
    {"TwicePairedQuotes",        "\"\"1\"\"",             "\"1\""},
    {"TextBehindQuotes",         "\"1\"2",                "\"1\"2"},
    {"CommentBehindValue",       "1 ; c",                 "1 ; c"},
    {"SecondEqualsSign",         "1 = 2",                 "1 = 2"},
    {"PercentToken",             "%name%",                "%name%"},
    {"BackslashAtLineEnd",       "a\\\r\nb",              "a\\"},
    {"Brackets",                 "[x]",                   "[x]"},
    {"BytesAbove127",            "\x80\x81\x8D\x8E\x9F\xA4\xE4\xFF", "\x80\x81\x8D\x8E\x9F\xA4\xE4\xFF"},
    {"NulInside",                "a\0b"s,                 "a"},
    {"BlankBeforeNul",           "a \0b"s,                "a "},
    {"NulInQuotes",              "\"a\0b\""s,             "\"a"},
    {"BlankAndNulBehindQuotes",  "\"a\" \0"s,             "\"a\" "},
    {"OtherBlanksAround",        "\v\f\x1A" "1\x1A\f\v",  "1"},
    {"Longest",                  std::string(259, 'v'),   std::string(259, 'v')},
    {"OneTooLong",               std::string(259, 'v') + "w", std::string(259, 'v')},
    {"QuotesAroundOneTooLong",   "'" + std::string(260, 'v') + "'", std::string(259, 'v')},
    {"CutBehindBlank",           std::string(258, 'v') + "  w", std::string(258, 'v') + " "},
};

// Lines of [Version].
const Row kLines[] = {
    {"OddBlanksAroundKey",       "\x1A\v\f" "DriverVer\f\v\x1A=1",     "1"},
    {"UpperCaseKey",             "DRIVERVER=1",                        "1"},
    {"QuotedKey",                "\"DriverVer\"=1",                    ""},
    {"LongerKeyFirst",           "DriverVers=1\r\nDriverVer=2",        "2"},
    {"ShorterKeyFirst",          "DriverVe=1\r\nDriverVer=2",          "2"},
    {"KeyWithoutEqualsSign",     "DriverVer",                          ""},
    {"RepeatedKey",              "DriverVer=1\r\nDriverVer=2",         "1"},
    {"RepeatedKeyFirstBare",     "DriverVer\r\nDriverVer=2",           ""},
    {"CommentedKey",             ";DriverVer=1",                       ""},
    {"KeyOnlyInNextSection",     "[x]\r\nDriverVer=2",                 ""},
    {"OpenHeaderBeforeKey",      "[x\r\nDriverVer=1",                  "1"},
    {"EmptyHeaderBeforeKey",     "[]\r\nDriverVer=1",                  ""},
    {"NulBehindKey",             "DriverVer\0x=1"s,                    "1"},
    {"BlankBeforeNulBehindKey",  "DriverVer \0=1"s,                    ""},
    {"CarriageReturnInLine",     "x\rDriverVer=1\ry",                  "1"},
    {"VerticalTabEndsNoLine",    "x\vDriverVer=1",                     ""},
    {"LongLineBeforeKey",        std::string(100000, 'x') + "\r\nDriverVer=1", "1"},
};

// Whole files.
const Row kFiles[] = {
    {"EmptyFile",                "",                                            ""},
    {"NoFinalLineEnd",           "[Version]\r\nDriverVer=1",                    "1"},
    {"EndsBehindKey",            "[Version]\r\nDriverVer",                      ""},
    {"LowerCaseSection",         "[version]\r\nDriverVer=1\r\n",                "1"},
    {"BlanksInHeader",           "[ \tVersion\x1A\v]\r\nDriverVer=1\r\n",       "1"},
    {"BlanksAroundHeader",       " \t\x1A[Version]\v \r\nDriverVer=1\r\n",      "1"},
    {"HeaderNotClosed",          "[Version\r\nDriverVer=1\r\n",                 ""},
    {"HeaderOpenedTwice",        "[[Version]\r\nDriverVer=1\r\n",               ""},
    {"HeaderClosedTwice",        "[Version]]\r\nDriverVer=1\r\n",               ""},
    {"TextBehindHeader",         "[Version] x\r\nDriverVer=1\r\n",              "1"},
    {"BracketsBehindHeader",     "[Version] ; [x]\r\nDriverVer=1\r\n",          ""},
    {"TextBeforeHeader",         "x[Version]\r\nDriverVer=1\r\n",               ""},
    {"NulInHeader",              "[Version\0x]\r\nDriverVer=1\r\n"s,            "1"},
    {"BlankBeforeNulInHeader",   "[Version \0]\r\nDriverVer=1\r\n"s,            ""},
    {"RepeatedSection",          "[Version]\r\nDriverVer=1\r\n[Version]\r\nDriverVer=2\r\n",  "1"},
    {"RepeatedSectionEmpty",     "[Version]\r\n[Version]\r\nDriverVer=2\r\n",   ""},
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
      {"Package",
       "; an INF\r\n[Version]\r\nSignature=\"$WINDOWS NT$\"\r\nProvider = %KWA%\r\n"
       "DriverVer = 02/13/2014,1.0.42.0\r\nDriverPackageDisplayName = \"Marlin USB\"\r\n[Strings]\r\nKWA=\"KWA\"\r\n",
       "02/13/2014,1.0.42.0", "Marlin USB"},
      {"NameInOtherSection", "[Version]\r\nDriverVer=1\r\n[Strings]\r\nDriverPackageDisplayName=x\r\n", "1", ""},
      {"Utf16WithoutMark", Utf16Inf("[Version]\r\nDriverVer=1\r\n").substr(2), "", ""},
  };
  for (const Row& row : kValues) {
    cases.push_back({row.name, "[Version]\r\nDriverVer=" + row.text + "\r\n", row.value, ""});
  }
  for (const Row& row : kLines) {
    cases.push_back({row.name, "[Version]\r\n" + row.text + "\r\n", row.value, ""});
  }
  for (const Row& row : kFiles) {
    cases.push_back({row.name, row.text, row.value, ""});
  }
  // All that is plain ASCII means the same in UTF-16.
  for (std::size_t i = 0, count = cases.size(); i < count; ++i) {
    const InfCase narrow = cases[i];
    if (std::all_of(narrow.bytes.begin(), narrow.bytes.end(), [](char c) { return (c & 0x80) == 0; })) {
      cases.push_back({narrow.name + "InUtf16", Utf16Inf(narrow.bytes), narrow.version, narrow.displayName});
    }
  }
  return cases;
}
