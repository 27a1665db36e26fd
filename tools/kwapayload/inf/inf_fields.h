#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/finding.h"

namespace kwa {

// Something about an INF that Setup refuses or may read in another way, or a limit of this reader.
struct InfFault {
  Severity severity;  // Error: Setup refuses the file, or this reader left out a part of it
  std::string code;   // such as "inf-signature"
  std::size_t line;   // from 1; 0 for the file as a whole
  std::string what;   // a phrase that follows the name of the INF, such as "has text before the first section"
};

// The longest field in characters, before and after substitution. Microsoft, "INF Strings Section": 4096 with the
// terminator.
constexpr std::size_t kMaxInfField = 4095;

// Splits the text of an INF into section names and fields.
//
// The rules are those of Microsoft's "General Syntax Rules for INF Files". Where these are silent or vague, the rules
// are those of Wine's dlls/setupapi/parser.c and its tests, which were made to pass on Windows too.
class InfFields {
 public:
  // The text must outlive this object.
  explicit InfFields(std::string_view inf);

  // Goes to the next line with something other than blanks and a comment. Returns whether there is one.
  bool FindLine();
  // Whether the line is the header of a section, "[name]".
  bool IsHeader() const { return text[at] == '['; }
  // The name of the header, at most 255 characters, blanks included. Goes to the end of the line.
  std::string_view ReadHeader();
  // Reads the next field of the line, without quotes, at most kMaxInfField characters. Goes after its separator.
  std::string ReadField();
  // What ended the last field: '=' (only after the first field of a line), ',' or 0 for the end of the line.
  char Separator() const { return separator; }

  // From 1; a line that continues the one before counts.
  std::size_t LineNumber() const { return lineNumber; }

  // Keeps the first fault of each code.
  void AddFault(Severity severity, const char* code, std::size_t line, const char* what);
  const std::vector<InfFault>& Faults() const { return faults; }

 private:
  bool AtLineEnd() const { return at >= text.size() || text[at] == '\n'; }
  void SkipBlanks();
  void SkipToLineEnd();
  void ReadQuoted(std::string* field);
  bool ReadBackslashes(std::string* field);

  std::string_view text;
  std::size_t at = 0;
  std::size_t lineNumber = 1;
  char separator = 0;
  bool isFirstField = true;
  std::vector<InfFault> faults;
};

}  // namespace kwa
