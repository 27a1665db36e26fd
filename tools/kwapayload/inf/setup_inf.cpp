#include "inf/setup_inf.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "base/ascii_text.h"

namespace kwa {
namespace {

using Sections = std::map<std::string, std::vector<InfLine>>;
using Strings = std::unordered_map<std::string, std::string>;  // by upper-case name

// Counts what is kept. The limits are far above what an INF has, so that no file costs much time or memory.
class Limits {
 public:
  bool Add(std::size_t lines, std::size_t values, std::size_t characters) {
    lineCount += lines;
    valueCount += values;
    textSize += characters;
    return AreKept();
  }
  bool AreKept() const { return lineCount <= 100000 && valueCount <= 500000 && textSize <= 16 << 20; }

 private:
  std::size_t lineCount = 0;
  std::size_t valueCount = 0;
  std::size_t textSize = 0;
};

InfLine ReadLine(InfFields* fields, Limits* limits) {
  InfLine line = {fields->LineNumber(), "", {}};
  std::string field = fields->ReadField();
  const bool hasKey = fields->Separator() == '=';
  if (hasKey) {
    line.key = std::move(field);
    field = fields->ReadField();
  }
  line.values.push_back(std::move(field));
  while (fields->Separator() != 0 && limits->Add(0, 1, line.values.back().size())) {
    line.values.push_back(fields->ReadField());
  }
  if (!hasKey && line.values.size() == 1) {
    line.key = line.values.front();
  }
  limits->Add(0, 1, line.key.size() + line.values.back().size());
  return line;
}

Sections ReadSections(InfFields* fields, Limits* limits) {
  Sections sections;
  std::vector<InfLine>* section = nullptr;
  while (limits->AreKept() && fields->FindLine()) {
    limits->Add(1, 0, 0);
    if (fields->IsHeader()) {
      const std::string name = UpperCase(fields->ReadHeader());
      limits->Add(0, 0, name.size());
      section = &sections[name];
      continue;
    }
    if (section == nullptr) {
      // Setup's error ERROR_EXPECTED_SECTION_NAME.
      fields->AddFault(Severity::Error, "inf-text-first", fields->LineNumber(),
                       "has text before the first section, and Setup refuses such a file");
      section = &sections[""];
    }
    section->push_back(ReadLine(fields, limits));
  }
  return sections;
}

// The value with the text for each %name% and "%" for "%%". Unknown names remain, and their '%' opens no other name.
std::string Substituted(std::string_view value, const Strings& strings) {
  std::string whole;
  while (whole.size() < kMaxInfField) {
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
  return whole.substr(0, kMaxInfField);
}

// Setup does not look for names in what it inserts, so the values of [Strings] remain as they are.
void SubstituteAll(Sections* sections, Limits* limits) {
  Strings strings;
  const auto stringsSection = sections->find("STRINGS");
  if (stringsSection != sections->end()) {
    for (const InfLine& line : stringsSection->second) {
      strings.emplace(UpperCase(line.key), line.values.front());
    }
  }
  for (auto section = sections->begin(); section != sections->end(); ++section) {
    for (InfLine& line : section->second) {
      for (std::string& value : line.values) {
        if (section != stringsSection && value.find('%') != std::string::npos && limits->AreKept()) {
          value = Substituted(value, strings);
          limits->Add(0, 0, value.size());
        }
      }
    }
  }
}

// Microsoft's pages name CR as an end of line too, but Wine's tests show that Windows reads it as a blank.
void CheckCharacters(std::string_view text, InfFields* fields) {
  const auto lineOf = [text](std::size_t at) {
    return 1 + static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
  };
  std::size_t at = text.find('\r');
  while (at != std::string_view::npos && text.substr(at + 1, 1) == "\n") {
    at = text.find('\r', at + 1);
  }
  if (at != std::string_view::npos) {
    fields->AddFault(Severity::Warning, "inf-lone-cr", lineOf(at),
                     "has a CR without an LF, and Windows may see the end of a line there");
  }
  if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos) {
    fields->AddFault(Severity::Warning, "inf-nul", lineOf(nul),
                     "has a NUL, and Windows may take the file for UTF-16 text");
  }
}

}  // namespace

SetupInf::SetupInf(const InfText& inf) {
  InfFields fields(inf.Text());
  Limits limits;
  sections = ReadSections(&fields, &limits);
  SubstituteAll(&sections, &limits);
  CheckCharacters(inf.Text(), &fields);
  if (!limits.AreKept()) {
    fields.AddFault(Severity::Error, "inf-too-large", fields.LineNumber(),
                    "is too large to be read in full: more than 100,000 entries, 500,000 values or 16 MB of text");
  } else {
    // Microsoft, "INF Version Section": another signature, or none, makes the file invalid. The check is Wine's, which
    // also takes "$Windows 95$". Setup's error is ERROR_WRONG_INF_STYLE.
    const InfLine* const signature = FindLine("Version", "Signature");
    const std::string value = signature == nullptr ? "" : UpperCase(signature->Value(0));
    if (value != "$WINDOWS NT$" && value != "$CHICAGO$" && value != "$WINDOWS 95$") {
      fields.AddFault(Severity::Error, "inf-signature", signature == nullptr ? 0 : signature->number,
                      "has no Signature = \"$Windows NT$\" in [Version], and Setup refuses such a file");
    }
  }
  faults = fields.Faults();
}

bool SetupInf::HasError() const {
  return std::any_of(faults.begin(), faults.end(),
                     [](const InfFault& fault) { return fault.severity == Severity::Error; });
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
