#include "inf/setup_inf.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "base/ascii_text.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxSectionName = 255;
// The longest field in characters, before and after substitution. Microsoft, "INF Strings Section": 4096 with the
// terminator.
constexpr std::size_t kMaxField = 4095;
// The longest field of Windows 2000, XP and Server 2003: 512 with the terminator.
constexpr std::size_t kMaxOldField = 511;

// A CR too: only LF ends a line, and a CR before it is a blank at the end of the line.
bool IsBlank(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r' && character != '\n');
}

// Splits the text of an INF into sections, lines and fields.
//
// The rules are those of Microsoft's "General Syntax Rules for INF Files". Where these are silent or vague, the rules
// are those of Wine's dlls/setupapi/parser.c and its tests, which were made to pass on Windows too.
class InfParser {
 public:
  // The old end-of-file character ends the text.
  explicit InfParser(std::string_view inf) : text(inf.substr(0, inf.find('\x1A'))) {}

  void ReadSections() {
    std::vector<InfLine>* section = nullptr;
    while (AreLimitsKept() && FindLine()) {
      ++lineCount;
      if (text[at] == '[') {
        section = &sections[ReadHeader()];
        continue;
      }
      if (section == nullptr) {
        // Setup's error ERROR_EXPECTED_SECTION_NAME.
        AddFault(Severity::Error, "inf-text-first", lineNumber,
                 "has text before the first section, and Setup refuses such a file");
        section = &sections[""];
      }
      section->push_back(ReadLine());
    }
  }

  // Adds a fault, unless there is one with this code. The number of a line is 0 for the file as a whole.
  void AddFault(Severity severity, const char* code, std::size_t line, const char* what) {
    if (std::none_of(faults.begin(), faults.end(), [code](const Finding& fault) { return fault.code == code; })) {
      faults.Add({severity, line == 0 ? "" : "line " + std::to_string(line), what, code});
    }
  }

  // The limits are far above what an INF has, so that no file costs much time or memory.
  bool AreLimitsKept() const { return lineCount <= 100000 && valueCount <= 500000 && textSize <= 16 << 20; }

  std::map<std::string, std::vector<InfLine>> sections;
  std::size_t lineNumber = 1;  // a line that continues the one before counts
  std::size_t textSize = 0;    // of all that is kept
  Findings faults;

 private:
  bool AtLineEnd() const { return at >= text.size() || text[at] == '\n'; }

  void SkipBlanks() {
    while (at < text.size() && IsBlank(text[at])) {
      ++at;
    }
  }

  void SkipToLineEnd() { at = std::min(text.find('\n', at), text.size()); }

  // Goes to the next line with something other than blanks and a comment. Returns whether there is one.
  bool FindLine() {
    for (;; ++at, ++lineNumber) {
      SkipBlanks();
      if (at >= text.size()) {
        return false;
      }
      if (text[at] == ';') {
        SkipToLineEnd();
      }
      if (!AtLineEnd()) {
        return true;
      }
    }
  }

  // The upper-case name of a section, blanks included.
  std::string ReadHeader() {
    const std::size_t begin = at + 1;
    SkipToLineEnd();
    const std::string_view line = text.substr(begin, at - begin);
    const std::string_view name = line.substr(0, line.find(']'));
    // Setup's errors ERROR_BAD_SECTION_NAME_LINE and ERROR_SECTION_NAME_TOO_LONG.
    if (name.size() == line.size()) {
      AddFault(Severity::Error, "inf-section-open", lineNumber,
               "has a section name without a closing bracket, and Setup refuses such a file");
    } else if (name.size() > kMaxSectionName) {
      AddFault(Severity::Error, "inf-section-long", lineNumber,
               "has a section name of more than 255 characters, and Setup refuses such a file");
    }
    textSize += std::min(name.size(), kMaxSectionName);
    return UpperCase(name.substr(0, kMaxSectionName));
  }

  InfLine ReadLine() {
    InfLine line = {lineNumber, "", {}};
    char separator = '\0';
    std::string field = ReadField(true, &separator);
    const bool hasKey = separator == '=';
    if (hasKey) {
      line.key = std::move(field);
      field = ReadField(false, &separator);
    }
    AddValue(std::move(field), &line);
    while (separator != '\0' && AreLimitsKept()) {
      AddValue(ReadField(false, &separator), &line);
    }
    if (!hasKey && line.values.size() == 1) {
      line.key = line.values.front();
    }
    textSize += line.key.size();
    return line;
  }

  void AddValue(std::string value, InfLine* line) {
    ++valueCount;
    textSize += value.size();
    line->values.push_back(std::move(value));
  }

  // Reads the next field of the line without quotes, and what ended it: '=' (only after the first field of a line), ','
  // or 0 for the end of the line.
  std::string ReadField(bool isFirst, char* separator) {
    std::string field;
    std::size_t keptSize = 0;  // blanks before this position are part of the field
    const auto trimEnd = [&] {
      while (field.size() > keptSize && IsBlank(field.back())) {
        field.pop_back();
      }
    };
    *separator = '\0';
    SkipBlanks();
    while (!AtLineEnd() && *separator == '\0') {
      const char character = text[at];
      if (character == ';') {
        SkipToLineEnd();
      } else if (character == ',' || (character == '=' && isFirst)) {
        *separator = character;
        ++at;
      } else if (character == '"') {
        ReadQuoted(&field);
        keptSize = field.size();
      } else if (character != '\\') {
        field += character;
        ++at;
      } else if (ReadBackslashes(&field)) {
        trimEnd();
      } else {
        keptSize = field.size();
      }
    }
    trimEnd();
    if (field.size() > kMaxOldField) {
      AddFault(Severity::Warning, "inf-field-long", lineNumber,
               "has a value of more than 511 characters, and Windows before Vista cuts it off");
      field.resize(std::min(field.size(), kMaxField));
      field.shrink_to_fit();
    }
    return field;
  }

  // Two quotes within quotes are one quote in the field. Quotes that are not closed end with the line.
  void ReadQuoted(std::string* field) {
    for (++at; !AtLineEnd(); ++at) {
      if (text[at] == '"') {
        ++at;
        if (AtLineEnd() || text[at] != '"') {
          return;
        }
      }
      *field += text[at];
    }
    AddFault(Severity::Warning, "inf-quote-open", lineNumber,
             "has quotes without an end in the line, and Windows may read on in the next line");
  }

  // At the end of a line, also before blanks, other backslashes and a comment, a backslash continues the line.
  // Elsewhere, it is a character like any other. Returns whether the line continues.
  bool ReadBackslashes(std::string* field) {
    const std::size_t begin = at;
    while (at < text.size() && (text[at] == '\\' || IsBlank(text[at]))) {
      ++at;
    }
    const std::size_t end = at;
    if (at < text.size() && text[at] == ';') {
      SkipToLineEnd();
    }
    if (!AtLineEnd()) {
      *field += text.substr(begin, end - begin);
      return false;
    }
    if (at < text.size()) {
      ++at;
      ++lineNumber;
      SkipBlanks();
      if (!AtLineEnd() && text[at] == '[') {
        AddFault(Severity::Warning, "inf-section-continued", lineNumber,
                 "has a section name in a line that continues the one before, so Setup does not see the section");
      }
    }
    return true;
  }

  std::string_view text;
  std::size_t at = 0;
  std::size_t lineCount = 0;
  std::size_t valueCount = 0;
};

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
    const std::string_view name = value.substr(begin + 1, end - begin - 1);
    const auto known = strings.find(UpperCase(name));
    whole += value.substr(0, begin);
    if (name.empty()) {
      whole += '%';
    } else if (known != strings.end()) {
      whole += known->second;
    } else {
      whole += value.substr(begin, end + 1 - begin);
    }
    value.remove_prefix(end + 1);
  }
  whole += value;
  return whole.substr(0, kMaxField);
}

// Setup does not look for names in what it inserts, so the values of [Strings] remain as they are.
void SubstituteAll(InfParser* parser) {
  Strings strings;
  for (const InfLine& line : parser->sections["STRINGS"]) {
    strings.emplace(UpperCase(line.key), line.values.front());
  }
  for (auto& [name, lines] : parser->sections) {
    for (InfLine& line : lines) {
      for (std::string& value : line.values) {
        if (name != "STRINGS" && value.find('%') != std::string::npos && parser->AreLimitsKept()) {
          value = Substituted(value, strings);
          parser->textSize += value.size();
        }
      }
    }
  }
}

// Microsoft's pages name CR as an end of line too, but Wine's tests show that Windows reads it as a blank.
void CheckCharacters(std::string_view text, InfParser* parser) {
  const auto add = [&](std::size_t at, const char* code, const char* what) {
    if (at != std::string_view::npos) {
      const std::string_view before = text.substr(0, at);
      const auto line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
      parser->AddFault(Severity::Warning, code, line, what);
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

SetupInf::SetupInf(const InfText& inf) {
  InfParser parser(inf.Text());
  parser.ReadSections();
  SubstituteAll(&parser);
  CheckCharacters(inf.Text(), &parser);
  sections = std::move(parser.sections);
  if (!parser.AreLimitsKept()) {
    parser.AddFault(Severity::Error, "inf-too-large", parser.lineNumber,
                    "is too large to be read in full: more than 100,000 entries, 500,000 values or 16 MB of text");
  } else {
    // Microsoft, "INF Version Section": another signature, or none, makes the file invalid. The check is Wine's, which
    // also takes "$Windows 95$". Setup's error is ERROR_WRONG_INF_STYLE.
    const InfLine* const signature = FindLine("Version", "Signature");
    const std::string value = signature == nullptr ? "" : UpperCase(signature->Value(0));
    if (value != "$WINDOWS NT$" && value != "$CHICAGO$" && value != "$WINDOWS 95$") {
      parser.AddFault(Severity::Error, "inf-signature", signature == nullptr ? 0 : signature->number,
                      "has no Signature = \"$Windows NT$\" in [Version], and Setup refuses such a file");
    }
  }
  faults = parser.faults;
}

bool SetupInf::HasSection(std::string_view name) const {
  return sections.count(UpperCase(name)) != 0;
}

const std::vector<InfLine>& SetupInf::Lines(std::string_view section) const {
  static const std::vector<InfLine> kNone;
  const auto found = sections.find(UpperCase(section));
  return found == sections.end() ? kNone : found->second;
}

const InfLine* SetupInf::FindLine(std::string_view section, std::string_view key) const {
  const std::vector<InfLine>& lines = Lines(section);
  const auto found =
      std::find_if(lines.begin(), lines.end(), [key](const InfLine& line) { return IsSameText(line.key, key); });
  return found == lines.end() ? nullptr : &*found;
}

}  // namespace kwa
