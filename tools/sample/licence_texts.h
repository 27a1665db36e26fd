// The licence agreements of the sample's driver package.
#pragma once

#include <cstddef>
#include <string>

namespace kwa {

enum class LicenceLanguage { kEnglish, kGerman };

// UTF-8 text with byte-order mark and CR LF line ends. Its wording fits the size, in bytes, of the sample's list of
// contents; a larger size is filled with lines of "=". Throws std::runtime_error when size is too small.
std::string MakeLicenceText(LicenceLanguage language, std::size_t size);

}  // namespace kwa
