#include "inf/setup_inf.h"

#include <algorithm>
#include <unordered_map>

#include "base/ascii_text.h"

namespace kwa {
namespace {

using Strings = std::unordered_map<std::string, std::string>;  // by upper-case name

// The value with the text for each %name% and "%" for "%%". Unknown names remain, and their '%' opens no other name.
std::string Substituted(std::string_view value, const Strings& strings) {
  std::string whole;
  while (whole.size() < kMaxField) {
    const std::size_t begin = value.find('%');
    const std::size_t end = begin == std::string_view::npos ? begin : value.find('%', begin + 1);
    if (end == std::string_view::npos) {
      break;
    }
    const auto known = strings.find(UpperCase(value.substr(begin + 1, end - begin - 1)));
    whole += value.substr(0, begin);
    whole += known == strings.end() ? value.substr(begin, end + 1 - begin) : std::string_view(known->second);
    value.remove_prefix(end + 1);
  }
  whole += value;
  return whole.substr(0, kMaxField);
}

// Setup does not look for names in what it inserts, so the values of [Strings] remain as they are.
void SubstituteAll(InfParts* parts) {
  Strings strings = {{"", "%"}};
  for (const InfLine& line : parts->sections["STRINGS"]) {
    strings.emplace(UpperCase(line.key), line.values.front());
  }
  for (auto& [name, lines] : parts->sections) {
    for (InfLine& line : lines) {
      for (std::string& value : line.values) {
        if (name != "STRINGS" && value.find('%') != std::string::npos && parts->AreLimitsKept()) {
          value = Substituted(value, strings);
          parts->textSize += value.size();
        }
      }
    }
  }
}

// Microsoft's pages name CR as an end of line too, but Wine's tests show that Windows reads it as a blank.
void CheckCharacters(std::string_view text, InfParts* parts) {
  const auto add = [&](std::size_t at, const char* code, const char* what) {
    if (at != std::string_view::npos) {
      const std::string_view before = text.substr(0, at);
      const auto line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
      parts->AddFault(Severity::Warning, code, line, what);
    }
  };
  std::size_t lone = text.find('\r');
  while (lone != std::string_view::npos && text.substr(lone + 1, 1) == "\n") {
    lone = text.find('\r', lone + 1);
  }
  add(lone, "inf-lone-cr", "has a CR without an LF, and Windows may see the end of a line there");
  add(text.find('\0'), "inf-nul", "has a NUL, and Windows may take the file for UTF-16 text");
}

}  // namespace

SetupInf::SetupInf(const InfText& inf) : parts(ParseInf(inf.Text())) {
  SubstituteAll(&parts);
  CheckCharacters(inf.Text(), &parts);
  if (!parts.AreLimitsKept()) {
    parts.AddFault(Severity::Error, "inf-too-large", parts.lineNumber,
                   "is too large to be read in full: more than 100,000 entries, 200,000 values or 16 MB of text");
  } else {
    // Microsoft, "INF Version Section": another signature, or none, makes the file invalid. The check is Wine's, which
    // also takes "$Windows 95$". Setup's error is ERROR_WRONG_INF_STYLE.
    const InfLine& signature = FindLine("Version", "Signature");
    const std::string value = UpperCase(signature.Value(0));
    if (value != "$WINDOWS NT$" && value != "$CHICAGO$" && value != "$WINDOWS 95$") {
      parts.AddFault(Severity::Error, "inf-signature", signature.number,
                     "has no Signature = \"$Windows NT$\" in [Version], and Setup refuses such a file");
    }
  }
}

bool SetupInf::HasSection(std::string_view name) const {
  return parts.sections.count(UpperCase(name)) != 0;
}

const std::vector<InfLine>& SetupInf::Lines(std::string_view section) const {
  static const std::vector<InfLine> kNone;
  const auto found = parts.sections.find(UpperCase(section));
  return found == parts.sections.end() ? kNone : found->second;
}

const InfLine& SetupInf::FindLine(std::string_view section, std::string_view key) const {
  static const InfLine kNone = {};
  const std::vector<InfLine>& lines = Lines(section);
  const auto found =
      std::find_if(lines.begin(), lines.end(), [key](const InfLine& line) { return IsSameText(line.key, key); });
  return found == lines.end() ? kNone : *found;
}

}  // namespace kwa
