#include <algorithm>
#include <utility>

#include "base/ascii_text.h"
#include "inf/setup_inf.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxSectionName = 255;
// The longest field of Windows 2000, XP and Server 2003: 512 with the terminator.
constexpr std::size_t kMaxOldField = 511;

// CR too: only LF ends a line, and a CR before it is a blank at the end of the line.
constexpr char kBlanks[] = " \t\v\f\r";
constexpr char kBlanksAndBackslash[] = " \t\v\f\r\\";

// Splits the text of an INF into sections, lines and fields.
//
// The rules are those of Microsoft's "General Syntax Rules for INF Files". Where these are silent or vague, the rules
// are those of Wine's dlls/setupapi/parser.c and its tests, which were made to pass on Windows too.
class InfParser {
 public:
  // The old end-of-file character ends the text.
  InfParser(std::string_view inf, InfParts* result) : text(inf.substr(0, inf.find('\x1A'))), parts(*result) {}

  void ReadSections() {
    std::vector<InfLine>* section = nullptr;
    while (parts.AreLimitsKept() && FindLine()) {
      ++parts.lineCount;
      if (text[at] == '[') {
        section = &parts.sections[ReadHeader()];
        continue;
      }
      if (section == nullptr) {
        // Setup's error ERROR_EXPECTED_SECTION_NAME.
        parts.AddFault(Severity::Error, "inf-text-first", parts.lineNumber,
                       "has text before the first section, and Setup refuses such a file");
        section = &parts.sections[""];
      }
      section->push_back(ReadLine());
    }
  }

 private:
  bool AtLineEnd() const { return at >= text.size() || text[at] == '\n'; }

  void Skip(const char* characters) { at = std::min(text.find_first_not_of(characters, at), text.size()); }

  void SkipToLineEnd() { at = std::min(text.find('\n', at), text.size()); }

  // Goes to the next line with something other than blanks and a comment. Returns whether there is one.
  bool FindLine() {
    for (;; ++at, ++parts.lineNumber) {
      Skip(kBlanks);
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
      parts.AddFault(Severity::Error, "inf-section-open", parts.lineNumber,
                     "has a section name without a closing bracket, and Setup refuses such a file");
    } else if (name.size() > kMaxSectionName) {
      parts.AddFault(Severity::Error, "inf-section-long", parts.lineNumber,
                     "has a section name of more than 255 characters, and Setup refuses such a file");
    }
    parts.textSize += std::min(name.size(), kMaxSectionName);
    return UpperCase(name.substr(0, kMaxSectionName));
  }

  InfLine ReadLine() {
    InfLine line = {parts.lineNumber, "", {}};
    char separator = '\0';
    std::string field = ReadField(true, &separator);
    const bool hasKey = separator == '=';
    if (hasKey) {
      line.key = std::move(field);
      field = ReadField(false, &separator);
    }
    AddValue(std::move(field), &line);
    while (separator != '\0' && parts.AreLimitsKept()) {
      AddValue(ReadField(false, &separator), &line);
    }
    if (!hasKey && line.values.size() == 1) {
      line.key = line.values.front();
    }
    parts.textSize += line.key.size();
    return line;
  }

  void AddValue(std::string value, InfLine* line) {
    ++parts.valueCount;
    parts.textSize += value.size();
    line->values.push_back(std::move(value));
  }

  // Reads the next field of the line without quotes, and what ended it: '=' (only after the first field of a line), ','
  // or 0 for the end of the line.
  std::string ReadField(bool isFirst, char* separator) {
    std::string field;
    std::size_t keptSize = 0;  // blanks before this position are part of the field
    const auto trimEnd = [&] {
      field.resize(keptSize + std::string_view(field).substr(keptSize).find_last_not_of(kBlanks) + 1);
    };
    *separator = '\0';
    Skip(kBlanks);
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
      parts.AddFault(Severity::Warning, "inf-field-long", parts.lineNumber,
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
    parts.AddFault(Severity::Warning, "inf-quote-open", parts.lineNumber,
                   "has quotes without an end in the line, and Windows may read on in the next line");
  }

  // At the end of a line, also before blanks, other backslashes and a comment, a backslash continues the line.
  // Elsewhere, it is a character like any other. Returns whether the line continues.
  bool ReadBackslashes(std::string* field) {
    const std::size_t begin = at;
    Skip(kBlanksAndBackslash);
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
      ++parts.lineNumber;
      Skip(kBlanks);
      if (!AtLineEnd() && text[at] == '[') {
        parts.AddFault(Severity::Warning, "inf-section-continued", parts.lineNumber,
                       "has a section name in a line that continues the one before, so Setup does not see the section");
      }
    }
    return true;
  }

  std::string_view text;
  std::size_t at = 0;
  InfParts& parts;
};

}  // namespace

void InfParts::AddFault(Severity severity, const char* code, std::size_t line, const char* what) {
  if (std::none_of(faults.begin(), faults.end(), [code](const Finding& fault) { return fault.code == code; })) {
    faults.Add({severity, line == 0 ? "" : "line " + std::to_string(line), what, code});
  }
}

InfParts ParseInf(std::string_view text) {
  InfParts parts;
  InfParser(text, &parts).ReadSections();
  return parts;
}

}  // namespace kwa
