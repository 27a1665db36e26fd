#pragma once

#include <string>
#include <vector>

#include "inf/inf_platform.h"
#include "inf/setup_inf.h"

namespace kwa {

// A version of Windows that [Manufacturer] names for the models of a platform.
struct InfTarget {
  std::string decoration;  // as written, such as "NTamd64.6.1"
  bool hasModels;          // false excludes the devices from that version
};

// The devices that an INF installs on a platform, on any version of Windows. Nothing occurs twice, without regard to
// case; all is in the order of the INF.
struct InfModels {
  std::vector<InfTarget> targets;            // none if [Manufacturer] has no decorations for the platform
  std::vector<std::string> installSections;  // without decorations; none if there are no models for the platform
  std::vector<std::string> hardwareIds;      // the hardware ID of each model and the compatible IDs after it
};

InfModels ReadModels(const SetupInf& inf, InfPlatform platform);

}  // namespace kwa
