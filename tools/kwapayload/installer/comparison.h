#pragma once

#include <string>
#include <utility>
#include <vector>

#include "installer/inspection.h"

namespace kwa {

// What two states of a file can have differently.
enum class FileField { Archive, Name, Size, Version, Kind, Signers, Coverage, Content };

struct ChangedFile {
  const InspectedFile* before;
  const InspectedFile* after;
  std::vector<FileField> fields;  // those that differ; Content only where nothing else does
};

// What two driver packages can have differently.
enum class PackageField { Inf, Version, DisplayName, Family };

// A run of lines of the dpinst.xml that differ.
struct ChangedLines {
  std::vector<std::string> removed;
  std::vector<std::string> added;

  bool operator<(const ChangedLines& other) const {
    return std::pair(removed, added) < std::pair(other.removed, other.added);
  }
};

// All that differs between two installers, or two archives, for somebody who reviews a release. The two
// inspections own the files.
struct Comparison {
  const Inspection* before;
  const Inspection* after;
  std::vector<const InspectedFile*> removed;
  std::vector<const InspectedFile*> added;
  std::vector<ChangedFile> changed;
  std::vector<PackageField> package;
  std::vector<ChangedLines> configuration;  // of the dpinst.xml that each writes on Windows Vista and later
  std::vector<std::string> program;         // the parts of the program around the payload that differ

  bool IsAlike() const;
};

// The inspections must outlive the result.
Comparison Compare(const Inspection& before, const Inspection& after);

}  // namespace kwa
