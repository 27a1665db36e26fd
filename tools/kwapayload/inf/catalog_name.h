#pragma once

#include <string>

#include "inf/inf_platform.h"
#include "inf/setup_inf.h"

namespace kwa {

// The catalog that [Version] names for a platform, as Setup chooses it: the value of CatalogFile.ntx86 or
// CatalogFile.ntamd64, else of CatalogFile.nt, else of CatalogFile. "" if there is none.
std::string CatalogName(const SetupInf& inf, InfPlatform platform);

}  // namespace kwa
