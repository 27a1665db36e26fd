#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "inf/inf_text.h"

namespace kwa {

// A line "key = value, value" of an INF as Setup reads it, whose rules are not those of ReadInfValue: sections of one
// name belong together, a ';' outside quotes begins a comment, quotes are taken off, and %name% stands for what
// [Strings] says.
struct SetupLine {
  std::string platform;  // lower-case, of a decorated section: "amd64" in [SourceDisksFiles.amd64]; else ""
  std::string key;
  std::vector<std::string> values;

  // The value at an index, "" where there is none.
  std::string Value(std::size_t index) const { return index < values.size() ? values[index] : ""; }
};

// The lines of a section and of its decorated forms, in their order: at most 100000 with 16 values each, texts cut to
// 260 characters.
std::vector<SetupLine> ReadSetupSection(const InfText& inf, std::string_view section);

}  // namespace kwa
