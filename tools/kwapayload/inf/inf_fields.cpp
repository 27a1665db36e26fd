#include "inf/inf_fields.h"

#include <algorithm>

namespace kwa {
namespace {

constexpr std::size_t kMaxSectionName = 255;
// The longest field of Windows 2000, XP and Server 2003: 512 with the terminator.
constexpr std::size_t kMaxOldField = 511;

// A CR too: only LF ends a line, and a CR before it is a blank at the end of the line.
bool IsBlank(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r' && character != '\n');
}

// The old end-of-file character ends the text.
std::string_view UpToEndOfFile(std::string_view text) {
  return text.substr(0, text.find('\x1A'));
}

}  // namespace

InfFields::InfFields(std::string_view inf) : text(UpToEndOfFile(inf)) {}

bool InfFields::FindLine() {
  for (;;) {
    SkipBlanks();
    if (at >= text.size()) {
      return false;
    }
    if (text[at] == ';') {
      SkipToLineEnd();
    }
    if (!AtLineEnd()) {
      isFirstField = true;
      return true;
    }
    ++at;
    ++lineNumber;
  }
}

std::string_view InfFields::ReadHeader() {
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
  return name.substr(0, kMaxSectionName);
}

std::string InfFields::ReadField() {
  std::string field;
  std::size_t keptSize = 0;  // blanks before this position are part of the field
  separator = 0;
  const auto trimEnd = [&] {
    while (field.size() > keptSize && IsBlank(field.back())) {
      field.pop_back();
    }
  };
  SkipBlanks();
  while (!AtLineEnd() && separator == 0) {
    const char character = text[at];
    if (character == ';') {
      SkipToLineEnd();
    } else if (character == ',' || (character == '=' && isFirstField)) {
      separator = character;
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
  isFirstField = false;
  trimEnd();
  if (field.size() > kMaxOldField) {
    AddFault(Severity::Warning, "inf-field-long", lineNumber,
             "has a value of more than 511 characters, and Windows before Vista cuts it off");
    field.resize(std::min(field.size(), kMaxInfField));
    field.shrink_to_fit();
  }
  return field;
}

void InfFields::AddFault(Severity severity, const char* code, std::size_t line, const char* what) {
  const auto isSame = [code](const InfFault& fault) { return fault.code == code; };
  if (std::none_of(faults.begin(), faults.end(), isSame)) {
    faults.push_back({severity, code, line, what});
  }
}

void InfFields::SkipBlanks() {
  while (at < text.size() && IsBlank(text[at])) {
    ++at;
  }
}

void InfFields::SkipToLineEnd() {
  at = std::min(text.find('\n', at), text.size());
}

// Two quotes within quotes are one quote in the field. Quotes that are not closed end with the line.
void InfFields::ReadQuoted(std::string* field) {
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

// At the end of a line, also before blanks, other backslashes and a comment, a backslash continues the line. Elsewhere,
// it is a character like any other. Returns whether the line continues.
bool InfFields::ReadBackslashes(std::string* field) {
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

}  // namespace kwa
