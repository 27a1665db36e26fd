#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "inf/inf_text.h"

namespace kwa {

// The largest number of characters that the platform returns: its caller's buffer of 260 bytes without the terminator.
constexpr std::size_t kProfileValueLimit = 259;

// The value of a key of an INF, exactly as GetPrivateProfileStringA with the default "" and a size of 260 gives it to
// the installer. "" if the section or the key is missing.
//
// The rules of the profile API differ from those of Setup (see SetupInf). Only the first section of a name and the
// first key of a name in it count, without regard to case. A ';' after a value begins no comment. Nothing is
// substituted. One pair of quotes of either kind around the whole value is removed. A NUL ends a name or a value.
// InfText::kOtherUnit in the value replaces a character that each Windows converts in its own way.
//
// section, key  plain ASCII
// limit         the number of characters that are kept; the rest is cut off
std::string ReadProfileValue(const InfText& inf, std::string_view section, std::string_view key,
                             std::size_t limit = kProfileValueLimit);

}  // namespace kwa
