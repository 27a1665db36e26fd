#include "inf_cases.h"

#include <string_view>

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
    {"OnlyBlanks",               " \t ",                  ""},
    {"BlanksAround",             " \t1 2\t ",             "1 2"},
    {"TabInside",                "a\tb",                  "a\tb"},
    {"VerticalTabAround",        "\v1\v",                 "1"},
    {"FormFeedAround",           "\f1\f",                 "1"},
    {"EndOfFileMarkAround",      "\x1A" "1\x1A",          "1"},
    {"EndOfFileMarkInside",      "1\x1A" "2",             "1\x1A" "2"},
    {"OtherControlsAround",      "\x01\x08\x1C\x1F\x7F",  "\x01\x08\x1C\x1F\x7F"},
    {"NoBreakSpaceAround",       "\xA0" "1\xA0",          "\xA0" "1\xA0"},
    {"NextLineAround",           "\x85" "1\x85",          "\x85" "1\x85"},
    {"DoubleQuotes",             "\"1\"",                 "1"},
    {"SingleQuotes",             "'1'",                   "1"},
    {"BlanksAroundQuotes",       " \"1\" \t",             "1"},
    {"BlanksInQuotes",           "\" 1 \"",               " 1 "},
    {"BlankAlone",               "\" \"",                 " "},
    {"TabAloneInQuotes",         "'\t'",                  "\t"},
    {"EmptyDoubleQuotes",        "\"\"",                  ""},
    {"EmptySingleQuotes",        "''",                    ""},
    {"MixedQuotes",              "\"1'",                  "\"1'"},
    {"MixedQuotesTheOtherWay",   "'1\"",                  "'1\""},
    {"OpeningQuoteOnly",         "\"1",                   "\"1"},
    {"ClosingQuoteOnly",         "1'",                    "1'"},
    {"DoubleQuoteAlone",         "\"",                    "\""},
    {"SingleQuoteAlone",         "'",                     "'"},
    {"SingleWithinDouble",       "\"'1'\"",               "'1'"},
    {"DoubleWithinSingle",       "'\"1\"'",               "\"1\""},
    {"TwicePairedQuotes",        "\"\"1\"\"",             "\"1\""},
    {"TwoQuotedParts",           "\"a\" b \"c\"",         "a\" b \"c"},
    {"PairAndOneMore",           "\"1\" \"",              "1\" "},
    {"QuotesInside",             "a \"b\" c",             "a \"b\" c"},
    {"TextBehindQuotes",         "\"1\"2",                "\"1\"2"},
    {"CommentBehindValue",       "1 ; c",                 "1 ; c"},
    {"CommentWithoutBlank",      "1;c",                   "1;c"},
    {"CommentBehindQuotes",      "\"1\" ; c",             "\"1\" ; c"},
    {"CommentInQuotes",          "\"a;b\"",               "a;b"},
    {"CommentAlone",             " ; c",                  "; c"},
    {"HashBehindValue",          "1 # c",                 "1 # c"},
    {"SecondEqualsSign",         "1 = 2",                 "1 = 2"},
    {"EqualsSignFirst",          "= 1",                   "= 1"},
    {"PercentToken",             "%name%",                "%name%"},
    {"PercentAlone",             "%",                     "%"},
    {"FormatsAndMarkup",         "%s & %n <b>",           "%s & %n <b>"},
    {"BackslashAtLineEnd",       "a\\\r\nb",              "a\\"},
    {"Brackets",                 "[x]",                   "[x]"},
    {"BytesAbove127",            "\x80\x81\x8D\x8E\x9F\xA4\xE4\xFF", "\x80\x81\x8D\x8E\x9F\xA4\xE4\xFF"},
    {"Utf8WithoutMark",          "\xC3\xA4",              "\xC3\xA4"},
    {"NulInside",                "a\0b"s,                 "a"},
    {"NulFirst",                 "\0b"s,                  ""},
    {"NulLast",                  "a\0"s,                  "a"},
    {"BlankBeforeNul",           "a \0b"s,                "a "},
    {"NulInQuotes",              "\"a\0b\""s,             "\"a"},
    {"NulBehindQuotes",          "\"a\"\0b"s,             "a"},
    {"BlankAndNulBehindQuotes",  "\"a\" \0"s,             "\"a\" "},
};

// Lines of [Version].
const Row kLines[] = {
    {"BlanksAroundKey",          " \tDriverVer \t= 1",                 "1"},
    {"OddBlanksAroundKey",       "\x1A\v\f" "DriverVer\f\v\x1A=1",     "1"},
    {"NoBreakSpaceBeforeKey",    "\xA0" "DriverVer=1",                 ""},
    {"BackspaceBeforeKey",       "\x08" "DriverVer=1",                 ""},
    {"LowerCaseKey",             "driverver=1",                        "1"},
    {"UpperCaseKey",             "DRIVERVER=1",                        "1"},
    {"QuotedKey",                "\"DriverVer\"=1",                    ""},
    {"BlankInKey",               "Driver Ver=1",                       ""},
    {"LongerKeyFirst",           "DriverVers=1\r\nDriverVer=2",        "2"},
    {"ShorterKeyFirst",          "DriverVe=1\r\nDriverVer=2",          "2"},
    {"KeyWithoutEqualsSign",     "DriverVer",                          ""},
    {"KeyWithColon",             "DriverVer:1",                        ""},
    {"NoKey",                    "=1",                                 ""},
    {"RepeatedKey",              "DriverVer=1\r\nDriverVer=2",         "1"},
    {"RepeatedKeyFirstEmpty",    "DriverVer=\r\nDriverVer=2",          ""},
    {"RepeatedKeyFirstBare",     "DriverVer\r\nDriverVer=2",           ""},
    {"CommentedKey",             ";DriverVer=1",                       ""},
    {"CommentedWithBlank",       "; DriverVer=1\r\nDriverVer=2",       "2"},
    {"CommentInKey",             "DriverVer;=1",                       ""},
    {"KeyAlsoInNextSection",     "DriverVer=1\r\n[x]\r\nDriverVer=2",  "1"},
    {"KeyOnlyInNextSection",     "[x]\r\nDriverVer=2",                 ""},
    {"OpenHeaderBeforeKey",      "[x\r\nDriverVer=1",                  "1"},
    {"BracketsOnTwoLines",       "[x\r\n]\r\nDriverVer=1",             "1"},
    {"EmptyHeaderBeforeKey",     "[]\r\nDriverVer=1",                  ""},
    {"BlankHeaderBeforeKey",     " [x] \r\nDriverVer=1",               ""},
    {"NulBehindKey",             "DriverVer\0x=1"s,                    "1"},
    {"BlankBeforeNulBehindKey",  "DriverVer \0=1"s,                    ""},
    {"NulBeforeKey",             "\0DriverVer=1"s,                     ""},
    {"NulInKey",                 "Driver\0Ver=1"s,                     ""},
    {"NulLineBeforeKey",         "\0\r\nDriverVer=1"s,                 "1"},
    {"CarriageReturnInLine",     "x\rDriverVer=1\ry",                  "1"},
    {"LineFeedFirst",            "x\n\rDriverVer=1",                   "1"},
    {"TwoCarriageReturns",       "x\r\r\nDriverVer=1",                 "1"},
    {"VerticalTabEndsNoLine",    "x\vDriverVer=1",                     ""},
    {"NextLineEndsNoLine",       "x\x85" "DriverVer=1",                ""},
};

// Whole files.
const Row kFiles[] = {
    {"EmptyFile",                "",                                            ""},
    {"OnlyLineEnds",             "\r\n\n\r",                                    ""},
    {"OneLetter",                "[",                                           ""},
    {"NoFinalLineEnd",           "[Version]\r\nDriverVer=1",                    "1"},
    {"EndsBehindEqualsSign",     "[Version]\r\nDriverVer=",                     ""},
    {"EndsBehindKey",            "[Version]\r\nDriverVer",                      ""},
    {"EndsInBlank",              "[Version]\r\nDriverVer=1 ",                   "1"},
    {"LineFeedsOnly",            "[Version]\nDriverVer=1\nx=2\n",               "1"},
    {"CarriageReturnsOnly",      "[Version]\rDriverVer=1\rx=2\r",               "1"},
    {"KeyBeforeAnySection",      "DriverVer=1\r\n[Version]\r\n",                ""},
    {"KeyAlsoBeforeAnySection",  "DriverVer=1\r\n[Version]\r\nDriverVer=2\r\n", "2"},
    {"NoSection",                "DriverVer=1\r\n",                             ""},
    {"LowerCaseSection",         "[version]\r\nDriverVer=1\r\n",                "1"},
    {"UpperCaseSection",         "[VERSION]\r\nDriverVer=1\r\n",                "1"},
    {"BlanksInHeader",           "[ \tVersion\x1A\v]\r\nDriverVer=1\r\n",       "1"},
    {"BlanksAroundHeader",       " \t\x1A[Version]\v \r\nDriverVer=1\r\n",      "1"},
    {"QuotesInHeader",           "[\"Version\"]\r\nDriverVer=1\r\n",            ""},
    {"HeaderNotClosed",          "[Version\r\nDriverVer=1\r\n",                 ""},
    {"HeaderClosedOnNextLine",   "[Version\r\n]\r\nDriverVer=1\r\n",            ""},
    {"HeaderNotOpened",          "Version]\r\nDriverVer=1\r\n",                 ""},
    {"HeaderOpenedTwice",        "[[Version]\r\nDriverVer=1\r\n",               ""},
    {"HeaderClosedTwice",        "[Version]]\r\nDriverVer=1\r\n",               ""},
    {"TextBehindHeader",         "[Version] x\r\nDriverVer=1\r\n",              "1"},
    {"CommentBehindHeader",      "[Version] ; x\r\nDriverVer=1\r\n",            "1"},
    {"BracketsBehindHeader",     "[Version] ; [x]\r\nDriverVer=1\r\n",          ""},
    {"KeyOnHeadersLine",         "[Version]DriverVer=1\r\nDriverVer=2\r\n",     "2"},
    {"TextBeforeHeader",         "x[Version]\r\nDriverVer=1\r\n",               ""},
    {"NulBehindHeader",          "[Version]\0\r\nDriverVer=1\r\n"s,             "1"},
    {"NulInHeader",              "[Version\0x]\r\nDriverVer=1\r\n"s,            "1"},
    {"BlankBeforeNulInHeader",   "[Version \0]\r\nDriverVer=1\r\n"s,            ""},
    {"NulFirstInHeader",         "[\0Version]\r\nDriverVer=1\r\n"s,             ""},
    {"NulBeforeHeader",          "\0[Version]\r\nDriverVer=1\r\n"s,             ""},
    {"CommentedHeader",          ";[Version]\r\nDriverVer=1\r\n",               ""},
    {"LongerSectionFirst",       "[Versions]\r\nDriverVer=1\r\n[Version]\r\nDriverVer=2\r\n", "2"},
    {"RepeatedSection",          "[Version]\r\nDriverVer=1\r\n[Version]\r\nDriverVer=2\r\n",  "1"},
    {"RepeatedSectionEmpty",     "[Version]\r\n[Version]\r\nDriverVer=2\r\n",   ""},
    {"RepeatedSectionOther",     "[Version]\r\nx=1\r\n[y]\r\n[Version]\r\nDriverVer=2\r\n",   ""},
    {"EndOfFileMarkEndsNothing", "x\x1A\r\n\x1A\r\n[Version]\r\nDriverVer=1\r\n",             "1"},
};
// clang-format on

std::string Letters(std::size_t count) {
  std::string letters;
  for (std::size_t i = 0; i < count; ++i) {
    letters += static_cast<char>('a' + i % 26);
  }
  return letters;
}

std::string Utf16(std::u16string_view text, bool bigEndian = false) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += bigEndian ? high : low;
    bytes += bigEndian ? low : high;
  }
  return bytes;
}

// Values about as long as the installer's buffer of 260 bytes, and lines far longer.
void AddLongTexts(std::vector<InfCase>& cases) {
  const auto add = [&cases](const std::string& name, const std::string& lines, const std::string& value) {
    cases.push_back({name, "[Version]\r\n" + lines + "\r\n", value, ""});
  };
  for (const std::size_t length : {258, 259, 260, 261, 300}) {
    const std::string letters = Letters(length);
    const std::string number = std::to_string(length);
    add("Letters" + number, "DriverVer=" + letters, letters.substr(0, 259));
    // Wine takes a character too many off a value of exactly 259 in quotes; a test of the host's reader has that case.
    if (length != 259) {
      add("LettersInQuotes" + number, "DriverVer=\"" + letters + "\"", letters.substr(0, 259));
    }
    add("LettersBehindQuote" + number, "DriverVer=\"" + letters, ("\"" + letters).substr(0, 259));
    add("LettersBeforeQuote" + number, "DriverVer=" + letters + "\"", (letters + "\"").substr(0, 259));
  }
  add("CutBehindBlank", "DriverVer=" + Letters(258) + "  b", Letters(258) + " ");
  add("CutAboveByte127", "DriverVer=" + Letters(258) + "\xE4\xF6", Letters(258) + "\xE4");
  add("LongValue", "DriverVer=" + Letters(100000), Letters(259));
  add("LongLineBeforeKey", Letters(100000) + "\r\nDriverVer=1", "1");
  add("LongKeyBeforeKey", Letters(100000) + "=2\r\nDriverVer=1", "1");
  add("LongComment", ";" + Letters(100000) + "\r\nDriverVer=1", "1");
  add("ManyBlanks", std::string(100000, ' ') + "DriverVer" + std::string(100000, '\t') + "=1", "1");
  cases.push_back({"LongHeader", "[" + Letters(100000) + "]\r\n[Version]\r\nDriverVer=1\r\n", "1", ""});
}

// Windows itself knows UTF-16 by its mark, in this byte order; that it takes the other order, or UTF-8 with a mark, was
// seen of Wine only. There a file that begins with UTF-8's mark has no section on its first line. Of an odd number of
// bytes in UTF-16, the last is completed with what happens to follow in memory, so there is no case of it.
void AddMarkedFiles(std::vector<InfCase>& cases) {
  const std::u16string_view text = u"\uFEFF[version]\r\n DriverVer = \"1 2\" \r\nDriverPackageDisplayName='x'\r\n";
  cases.push_back({"Utf16", Utf16(text), "1 2", "x"});
  cases.push_back({"Utf16BigEndian", Utf16(text, true), "1 2", "x"});
  cases.push_back({"Utf16WithoutMark", Utf16(text.substr(1)), "", ""});
  cases.push_back({"Utf16MarkAlone", "\xFF\xFE", "", ""});
  cases.push_back({"Utf16TwoMarks", "\xFF\xFE" + Utf16(text), "", ""});
  const auto wide = [&cases](const char* name, const std::u16string& lines, const std::string& value) {
    cases.push_back({name, Utf16(u"\uFEFF[Version]\r\n" + lines), value, ""});
  };
  wide("Utf16NoLineEnd", u"DriverVer=1", "1");
  wide("Utf16InCodePage", u"DriverVer=\u00E4\u20AC\u0178\u0081", "\xE4\x80\x9F\x81");
  wide("Utf16LooksAlike", u"DriverVer=\u0100\u01CD\u03B1\uFF21\u2261\uFF1F", "AAaA=?");
  wide("Utf16NotInCodePage", u"DriverVer=\u4E00\uFFFE\uFEFF|", "???|");
  wide("Utf16Surrogates", u"DriverVer=\U0001F600|\xD83D|\xDE00|", "\?\?|?|?|");
  wide("Utf16FullWidthSyntax",
       u"DriverVer\uFF1D2\r\nDriverVer=\uFF02"
       "1\uFF02",
       "\"1\"");
  wide("Utf16WideBlanks",
       u"\u2003DriverVer=1\r\nDriverVer=\u3000"
       "2\u3000\"",
       " 2 \"");
  wide("Utf16OtherLineEnds", u"DriverVer=a\u2028b\u0085", "a?b\?");
  wide("Utf16CaseOfOtherLetters", u"Dr\u0130verVer=1\r\nDr\u0131verVer=2", "");
  wide("Utf16Nul", u"DriverVer=a\0b"s, "a");
  wide("Utf16Cut", u"DriverVer=" + std::u16string(300, u'\u4E00'), std::string(259, '?'));
  wide("Utf16CaseOfKelvinSign", u"DriverPac\u212AageDisplayName=1", "");
  const auto utf8 = [&cases](const char* name, const std::string& value, const std::string& read) {
    cases.push_back({name, "\xEF\xBB\xBF[Version]\r\nDriverVer=" + value, read, ""});
  };
  cases.push_back({"Utf8MarkAlone", "\xEF\xBB\xBF", "", ""});
  cases.push_back({"Utf8HalfMark", "\xEF\xBB[Version]\r\nDriverVer=1\r\n", "", ""});
  utf8("Utf8InCodePage", "\"\xC3\xA4\xE2\x82\xAC\"\r\n", "\xE4\x80");
  utf8("Utf8LooksAlike", "\xC4\x80\xEF\xBC\xA1\r\n", "AA");
  utf8("Utf8NotInCodePage", "\xE4\xB8\x80\xF0\x9F\x98\x80|\r\n", "???|");
  utf8("Utf8Cut", Letters(258) + "\xF0\x9F\x98\x80|\r\n", Letters(258) + "?");
  utf8("Utf8StrayBytes", "\x80\xFF\xC1\xBF|\xF5\x80\x80\x80|\r\n", "\?\?\?\?|\?\?\?\?|");
  utf8("Utf8Overlong", "\xE0\x80\x80|\xF0\x80\x80\x80|\xF0\x8F\xBF\xBF|\r\n", "\?\?|\?\?\?|\?\?\?|");
  utf8("Utf8Surrogate", "\xED\xA0\x80|\xED\x9F\xBF|\r\n", "\?\?|?|");
  utf8("Utf8BeyondLast", "\xF4\x90\x80\x80|\xF4\x8F\xBF\xBF|\r\n", "\?\?\?|\?\?|");
  utf8("Utf8Unfinished", "\xC3|\xE4\xB8|\xE4\xC3\xA4|\xF0\x80\xC3\xA4|\r\n", "?|?|?\xE4|?\xE4|");
  utf8("Utf8EndOfFile", "1\xF0\x9F|", "1?");
  utf8("Utf8EndOfFileTakesLineEnd", "1\xF0\x9F\r", "1?");
}

}  // namespace

std::vector<InfCase> InfCases() {
  std::vector<InfCase> cases = {
      {"Package",
       "; an INF\r\n[Version]\r\nSignature=\"$WINDOWS NT$\"\r\nProvider = %KWA%\r\n"
       "DriverVer = 02/13/2014,1.0.42.0\r\nDriverPackageDisplayName = \"Marlin USB\"\r\n[Strings]\r\nKWA=\"KWA\"\r\n",
       "02/13/2014,1.0.42.0", "Marlin USB"},
      {"NameWithoutVersion", "[Version]\r\nDriverPackageDisplayName = Marlin USB\r\n", "", "Marlin USB"},
      {"NameInOtherSection", "[Version]\r\nDriverVer=1\r\n[Strings]\r\nDriverPackageDisplayName=x\r\n", "1", ""},
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
  AddLongTexts(cases);
  AddMarkedFiles(cases);
  return cases;
}
