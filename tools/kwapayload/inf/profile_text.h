#pragma once

#include <cstdint>
#include <string>

#include "base/byte_span.h"

namespace kwa {

// Text of a file as the platform's profile reader sees it, unit by unit without a copy. A unit is two bytes in a UTF-16
// file, one byte in any other. All that means something in a profile is ASCII, so UTF-8 can stay as it is until a value
// is taken out. Of a UTF-16 file with an odd number of bytes the last is left out; the platform completes it with
// whatever lies behind in memory.
class ProfileText {
 public:
  explicit ProfileText(ByteSpan file);

  std::uint64_t Size() const { return size; }

  // The unit, or 0 beyond the end.
  char16_t operator[](std::uint64_t index) const;

  // Units [begin, end) in the ANSI code page 1252, cut to `limit` characters.
  std::string ToAnsi(std::uint64_t begin, std::uint64_t end, std::size_t limit) const;

 private:
  enum class Encoding { Ansi, Utf8, Utf16LittleEndian, Utf16BigEndian };

  Encoding encoding = Encoding::Ansi;
  ByteSpan units;  // behind the byte-order mark
  std::uint64_t size = 0;
};

}  // namespace kwa
