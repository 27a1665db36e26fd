#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/finding.h"
#include "inf/inf_text.h"

namespace kwa {

// The longest field in characters, before and after substitution. Microsoft, "INF Strings Section": 4096 with the
// terminator.
constexpr std::size_t kMaxField = 4095;

// An entry "key = value, value" or "value, value". A single value without a key is its own key.
struct InfLine {
  std::size_t number;               // from 1; the first line of an entry that continues on other lines
  std::string key;                  // without substitution, as Setup compares it; "" if there is none
  std::vector<std::string> values;  // at least one, but for the line that FindLine gives for none

  // The value at an index from 0, or "" after the last one.
  std::string Value(std::size_t index) const { return index < values.size() ? values[index] : ""; }
};

// What the reader of an INF keeps.
struct InfParts {
  // Adds a fault, unless there is one with this code. The number of a line is 0 for the file as a whole.
  void AddFault(Severity severity, const char* code, std::size_t line, const char* what);

  // Whether there are at most 100,000 entries and headers, 200,000 values and 16 MB of text. An INF has far less, and
  // no file may cost much time or memory.
  bool AreLimitsKept() const { return lineCount <= 100000 && valueCount <= 200000 && textSize <= 16 << 20; }

  std::map<std::string, std::vector<InfLine>> sections;  // by upper-case name
  Findings faults;
  std::size_t lineNumber = 1;  // where the reader is; a line that continues the one before counts
  std::size_t lineCount = 0;
  std::size_t valueCount = 0;
  std::size_t textSize = 0;  // bytes; a value counts again after substitution
};

// Reads lines and fields as they are written, without the texts of [Strings], until a limit is met.
InfParts ParseInf(std::string_view text);

// An INF as Setup (SetupAPI) reads it. Sections of one name are one section. Names of sections and keys are compared
// without regard to case.
class SetupInf {
 public:
  // Where the limits are not kept, the content is not complete, and the fault "inf-too-large" says so.
  explicit SetupInf(const InfText& inf);

  // What Setup refuses or may read in another way, or a limit of this reader: the first fault of each code. `where` is
  // "line 7", or "" for the file as a whole; `what` follows the name of the INF. If one is an error, Setup reads
  // nothing of the file, and the content here is a guess.
  const Findings& Faults() const { return parts.faults; }

  bool HasSection(std::string_view name) const;
  // The lines of a section; none if there is no such section.
  const std::vector<InfLine>& Lines(std::string_view section) const;
  // The first line of a section with a key; a line 0 without values if there is none.
  const InfLine& FindLine(std::string_view section, std::string_view key) const;

 private:
  InfParts parts;
};

}  // namespace kwa
