#include "inf/ansi_code_page.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace kwa {
namespace {

struct Run {
  char16_t first;
  std::string_view bytes;  // of first, first + 1, …
};

// All units whose byte is neither their own number nor '?', but for the full-width forms. In ascending order.
// clang-format off
constexpr Run kRuns[] = {
    {0x0100, "AaAaAaCcCcCcCcDd\xD0" "dEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIi"}, {0x0134, "JjKk"}, {0x0139, "LlLlLl"},
    {0x0141, "LlNnNnNn"}, {0x014C, "OoOoOo\x8C\x9CRrRrRrSsSsSs\x8A\x9ATtTtTtUuUuUuUuUuUuWwYy\x9FZzZz\x8E\x9E"},
    {0x0180, "b"}, {0x0189, "\xD0"}, {0x0191, "\x83\x83"}, {0x0197, "I"}, {0x019A, "l"}, {0x019F, "OOo"},
    {0x01AB, "t"}, {0x01AE, "TUu"}, {0x01B6, "z"}, {0x01C0, "|"}, {0x01C3, "!"}, {0x01CD, "AaIiOoUuUuUuUuUu"},
    {0x01DE, "Aa"}, {0x01E4, "GgGgKkOoOo"}, {0x01F0, "j"}, {0x0261, "g"}, {0x02B9, "'\""}, {0x02BC, "'"},
    {0x02C4, "^"}, {0x02C6, "\x88"}, {0x02C8, "'\xAF\xB4`"}, {0x02CD, "_"}, {0x02DA, "\xB0"}, {0x02DC, "\x98"},
    {0x0300, "`\xB4^~\xAF\xAF"}, {0x0308, "\xA8"}, {0x030A, "\xB0"}, {0x030E, "\""}, {0x0327, "\xB8"}, {0x0331, "__"},
    {0x037E, ";"}, {0x0393, "G"}, {0x0398, "T"}, {0x03A3, "S"}, {0x03A6, "F"}, {0x03A9, "O"}, {0x03B1, "a\xDF"},
    {0x03B4, "de"}, {0x03BC, "\xB5"}, {0x03C0, "p"}, {0x03C3, "st"}, {0x03C6, "f"}, {0x04BB, "h"}, {0x0589, ":"},
    {0x066A, "%"}, {0x2000, "       "}, {0x2010, "--"}, {0x2013, "\x96\x97"}, {0x2017, "=\x91\x92\x82"},
    {0x201C, "\x93\x94\x84"}, {0x2020, "\x86\x87\x95"}, {0x2024, "\xB7"}, {0x2026, "\x85"}, {0x2030, "\x89"},
    {0x2032, "'"}, {0x2035, "`"}, {0x2039, "\x8B\x9B"}, {0x2044, "/"}, {0x2070, "\xB0"}, {0x2074, "45678"},
    {0x207F, "n0123456789"}, {0x20A1, "\xA2"}, {0x20A4, "\xA3"}, {0x20A7, "P"}, {0x20AC, "\x80"}, {0x2102, "C"},
    {0x2107, "E"}, {0x210A, "gHHHh"}, {0x2110, "IILl"}, {0x2115, "N"}, {0x2118, "PPQRRR"}, {0x2122, "\x99"},
    {0x2124, "Z"}, {0x2128, "Z"}, {0x212A, "K\xC5" "BCeeEF"}, {0x2133, "Mo"}, {0x2205, "\xD8"}, {0x2212, "-\xB1"},
    {0x2215, "/\\*\xB0\xB7v"}, {0x221E, "8"}, {0x2223, "|"}, {0x2229, "n"}, {0x2236, ":"}, {0x223C, "~"},
    {0x2248, "\x98"}, {0x2261, "="}, {0x2264, "=="}, {0x226A, "\xAB\xBB"}, {0x22C5, "\xB7"}, {0x2302, "\xA6^"},
    {0x2310, "\xAC"}, {0x2320, "()"}, {0x2329, "<>"}, {0x2500, "-"}, {0x2502, "\xA6"}, {0x250C, "+"}, {0x2510, "+"},
    {0x2514, "+"}, {0x2518, "+"}, {0x251C, "+"}, {0x2524, "\xA6"}, {0x252C, "-"}, {0x2534, "-"}, {0x253C, "+"},
    {0x2550, "-\xA6++++++++++++\xA6\xA6\xA6\xA6\xA6\xA6------+++"}, {0x2580, "\xAF"}, {0x2584, "_"}, {0x2588, "\xA6"},
    {0x258C, "\xA6"}, {0x2590, "\xA6\xA6\xA6\xA6"}, {0x25A0, "\xA6"}, {0x263C, "\xA4"}, {0x2758, "|"}, {0x3000, " "},
    {0x3008, "<>\xAB\xBB"}, {0x301A, "[]"}, {0x30FB, "\xB7"},
};
// clang-format on

// The full-width forms of '!' to '~' stand in the order of ASCII; the one of '?' gives that byte as well.
constexpr char16_t kFirstFullWidth = 0xFF01;
constexpr char16_t kLastFullWidth = 0xFF5E;

bool HasOwnNumber(char16_t unit) {
  constexpr std::u16string_view kUnassigned = u"\x81\x8D\x8F\x90\x9D";
  return unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF) || kUnassigned.find(unit) != std::u16string_view::npos;
}

}  // namespace

char ToCodePage1252(char16_t unit) {
  if (HasOwnNumber(unit)) {
    return static_cast<char>(unit);
  }
  if (unit >= kFirstFullWidth && unit <= kLastFullWidth) {
    return static_cast<char>(unit - kFirstFullWidth + '!');
  }
  const auto* const behind = std::upper_bound(std::begin(kRuns), std::end(kRuns), unit,
                                              [](char16_t wanted, const Run& run) { return wanted < run.first; });
  if (behind == std::begin(kRuns)) {
    return '?';
  }
  const Run& run = *std::prev(behind);
  const auto place = static_cast<std::size_t>(unit - run.first);
  return place < run.bytes.size() ? run.bytes[place] : '?';
}

}  // namespace kwa
