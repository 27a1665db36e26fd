#include "inf/inf_reader.h"

#include "inf/profile_text.h"

namespace kwa {
namespace {

// Part of a text, in units.
struct Range {
  std::uint64_t begin;
  std::uint64_t end;

  bool Empty() const { return begin == end; }
};

bool IsLineEnd(char16_t unit) {
  return unit == '\r' || unit == '\n';
}

// What the platform drops around lines, names and values: blanks, and the old end-of-file mark.
bool IsBlank(char16_t unit) {
  return unit == ' ' || unit == '\t' || unit == '\v' || unit == '\f' || unit == 0x1A;
}

Range Trimmed(const ProfileText& text, Range range) {
  while (!range.Empty() && IsBlank(text[range.begin])) {
    ++range.begin;
  }
  while (!range.Empty() && IsBlank(text[range.end - 1])) {
    --range.end;
  }
  return range;
}

// The first place of a unit in a range, or its end.
std::uint64_t Find(const ProfileText& text, Range range, char16_t unit) {
  std::uint64_t at = range.begin;
  while (at < range.end && text[at] != unit) {
    ++at;
  }
  return at;
}

// Moves *position behind the next line and returns the line without blanks around it.
Range NextLine(const ProfileText& text, std::uint64_t* position) {
  Range line = {*position, *position};
  while (line.end < text.Size() && !IsLineEnd(text[line.end])) {
    ++line.end;
  }
  *position = line.end + 1;
  return Trimmed(text, line);
}

bool IsSame(const ProfileText& text, Range range, std::string_view name) {
  const auto lower = [](char16_t unit) { return unit >= 'A' && unit <= 'Z' ? unit - 'A' + 'a' : int{unit}; };
  range.end = Find(text, range, 0);
  if (range.end - range.begin != name.size()) {
    return false;
  }
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (lower(text[range.begin + i]) != lower(static_cast<unsigned char>(name[i]))) {
      return false;
    }
  }
  return true;
}

// Whether a line is a section's header. Its name reaches from the first bracket to the last closing one.
bool ReadSectionHeader(const ProfileText& text, Range line, Range* name) {
  if (line.Empty() || text[line.begin] != '[') {
    return false;
  }
  while (line.end > line.begin && text[line.end - 1] != ']') {
    --line.end;
  }
  if (line.Empty()) {
    return false;
  }
  *name = Trimmed(text, {line.begin + 1, line.end - 1});
  return true;
}

std::string Value(const ProfileText& text, Range range, std::size_t limit) {
  range.end = Find(text, range, 0);
  if (range.end - range.begin >= 2) {
    const char16_t first = text[range.begin];
    if ((first == '"' || first == '\'') && text[range.end - 1] == first) {
      ++range.begin;
      --range.end;
    }
  }
  return text.ToAnsi(range.begin, range.end, limit);
}

}  // namespace

std::string ReadInfValue(ByteSpan inf, std::string_view section, std::string_view key, std::size_t limit) {
  const ProfileText text(inf);
  bool inSection = false;
  for (std::uint64_t position = 0; position < text.Size();) {
    const Range line = NextLine(text, &position);
    Range header = {};
    if (ReadSectionHeader(text, line, &header)) {
      if (inSection) {
        break;
      }
      inSection = IsSame(text, header, section);
    } else if (inSection) {
      const std::uint64_t equalsSign = Find(text, line, '=');
      if (IsSame(text, Trimmed(text, {line.begin, equalsSign}), key)) {
        return equalsSign == line.end ? "" : Value(text, Trimmed(text, {equalsSign + 1, line.end}), limit);
      }
    }
  }
  return "";
}

}  // namespace kwa
