#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/finding.h"
#include "inf/inf_parser.h"
#include "inf/inf_text.h"

namespace kwa {

// An INF as Setup (SetupAPI) reads it. Sections of one name are one section. Names of sections and keys are compared
// without regard to case.
class SetupInf {
 public:
  // Reads at most 100,000 entries and headers with 200,000 values and 16 MB of text in all. If there are more, the
  // content is not complete, and the fault "inf-too-large" says so.
  explicit SetupInf(const InfText& inf);

  // What Setup refuses or may read in another way, or a limit of this reader: the first fault of each code. `where` is
  // "line 7", or "" for the file as a whole; `what` follows the name of the INF. If one is an error, Setup reads
  // nothing of the file, and the content here is a guess.
  const Findings& Faults() const { return faults; }

  bool HasSection(std::string_view name) const;
  // The lines of a section; none if there is no such section.
  const std::vector<InfLine>& Lines(std::string_view section) const;
  // The first line of a section with a key, or null.
  const InfLine* FindLine(std::string_view section, std::string_view key) const;

 private:
  std::map<std::string, std::vector<InfLine>> sections;  // by upper-case name
  Findings faults;
};

}  // namespace kwa
