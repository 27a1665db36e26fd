#pragma once

#include <string>

#include "inf/inf_text.h"

namespace kwa {

// The catalog that an INF's [Version] names for a platform, as Setup chooses it: CatalogFile.ntamd64 for "amd64" (and
// so on) before CatalogFile.nt before CatalogFile. "" where there is none.
std::string CatalogName(const InfText& inf, const std::string& platform);

}  // namespace kwa
