#pragma once

#include <string>
#include <vector>

#include "installer/inspection.h"

namespace kwa {

// Two states of a file that differ.
struct ChangedFile {
  const InspectedFile* before;
  const InspectedFile* after;
};

// A run of lines of the dpinst.xml that differ.
struct ChangedLines {
  std::vector<std::string> removed;
  std::vector<std::string> added;
};

// The hardware IDs that differ for a platform.
struct ChangedHardware {
  InfPlatform platform;
  std::vector<std::string> removed;
  std::vector<std::string> added;
};

// How Setup ranks the second DriverVer against the first. The JSON report has words for the values in this order.
enum class VersionOrder { Unknown, Older, Same, Newer };

// All that differs between two installers, or two archives, for somebody who reviews a release. The two inspections own
// the files.
struct Comparison {
  const Inspection* before;
  const Inspection* after;
  std::vector<const InspectedFile*> removed;
  std::vector<const InspectedFile*> added;
  std::vector<ChangedFile> changed;
  bool isOrderChanged;    // of the files that both have
  bool isPackageChanged;  // the INF's name, what the installer reads of it, and its Windows versions
  VersionOrder versionOrder;
  std::vector<ChangedHardware> hardware;
  bool areSignersChanged;                   // of the installer
  bool areTextsChanged;                     // the wizard's texts, as far as the version records tell them
  std::vector<std::string> programParts;    // the parts of the program around the payload that differ, raw
  std::vector<ChangedLines> configuration;  // of the dpinst.xml for Windows Vista and later, with this tool's texts

  bool IsAlike() const;
};

// The inspections must outlive the result.
Comparison Compare(const Inspection& before, const Inspection& after);

}  // namespace kwa
