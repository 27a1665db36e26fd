#pragma once

#include <string>
#include <vector>

#include "installer/installer_file.h"
#include "installer/listing.h"

namespace kwa {

// One thing that two installers or archives have differently. Texts are escaped; empty where one side has nothing.
struct Change {
  std::string what;  // "size", "version", …
  std::string before;
  std::string after;
};

struct ChangedFile {
  std::string name;  // as it is now
  std::vector<Change> changes;
};

// All that differs between two installers, or two archives, to somebody who reviews a release.
struct Comparison {
  std::vector<ListedFile> removed;
  std::vector<ListedFile> added;
  std::vector<ChangedFile> changed;
  std::vector<Change> identity;  // what the installer reads from the INF, and the family that it chooses by it
  // The dpinst.xml that each will write, where they differ: each a run of old lines behind a '-' and new ones behind a
  // '+', escaped.
  std::vector<std::vector<std::string>> configuration;
  std::vector<std::string> program;  // the parts of the program around the payload that are not the same

  bool IsAlike() const;
};

Comparison CompareInstallers(const InstallerFile& before, const InstallerFile& after);

}  // namespace kwa
