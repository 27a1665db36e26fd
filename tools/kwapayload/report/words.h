#pragma once

#include <string>
#include <vector>

#include "base/finding.h"
#include "installer/comparison.h"

// Words for facts that more than one report needs. Texts of a file are escaped; a fact that is not there is "".

namespace kwa {

const char* SeverityWord(Severity severity);

// Who signed, such as "Maker, Microsoft (BROKEN)".
std::string SignersText(const std::vector<Signature>& signatures);

// What a signature says: "Maker, 2014-02-13 12:00:00 UTC".
std::string SignatureText(const Signature& signature);

// "yes", "NO", or "" where no catalog has to cover the file or can be read.
std::string CoverageText(const InspectedFile& file);

// The version of a version record, such as "1.0.42.0".
std::string VersionText(const std::optional<VersionRecord>& version);

// The text of a version record for a key, raw; "" where there is none.
std::string RecordText(const std::optional<VersionRecord>& version, const char* key);

// The parts of the wizard's list of devices for a family, without the line feeds.
std::vector<std::string> DeviceNames(const DeviceFamily& family, bool isGerman);

// A fact that differs.
struct Change {
  const char* what;
  std::string before;
  std::string after;
};

// What differs between two states of a file. The content is told only where nothing else differs.
std::vector<Change> FileChanges(const ChangedFile& file);
// What differs in what the installer reads of the package.
std::vector<Change> PackageChanges(const Comparison& comparison);
// Who signed. Anybody can make a certificate with the same name, so another certificate counts.
Change SignatureChange(const Comparison& comparison);
// What differs in the installer around the payload.
std::vector<Change> InstallerChanges(const Comparison& comparison);

// "one, two, three".
template <typename List>
std::string Joined(const List& texts, const char* separator = ", ") {
  std::string joined;
  for (const std::string& text : texts) {
    joined += (&text == &*texts.begin() ? "" : separator) + text;
  }
  return joined;
}

}  // namespace kwa
