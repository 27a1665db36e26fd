#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "inf/inf_text.h"

namespace kwa {

// Characters that the platform hands back at most: its caller's buffer of 260 bytes less the terminator.
constexpr std::size_t kInfValueLimit = 259;

// The value of a key of an INF, exactly as GetPrivateProfileStringA with the default "" and a size of 260 gives it to
// the installer, or "" where section or key is missing.
//
// The platform's rules, which are not those of setup information files: only the first section and in it the first key
// of a name count, without regard to case; a ';' begins no comment behind a value; nothing is substituted; one pair of
// quotes of either kind around the whole value is removed. A NUL ends a name or value. InfText::kOtherUnit stands in
// the value for what each Windows decides.
//
// section, key  plain ASCII
// limit         characters that are kept; what is behind them is cut off
std::string ReadInfValue(const InfText& inf, std::string_view section, std::string_view key,
                         std::size_t limit = kInfValueLimit);

}  // namespace kwa
