#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kwa {

// Read-only bytes of an untrusted file. Every access is defined: what is outside reads as zero or as an empty part,
// so that a reader of nonsense goes wrong but never out of bounds. Where the difference matters, ask Contains first.
// Integers are little-endian. The bytes belong to someone else, mostly a MappedFile.
class ByteSpan {
 public:
  constexpr ByteSpan() = default;
  constexpr ByteSpan(const std::uint8_t* bytes, std::size_t byteCount) : data(bytes), size(byteCount) {}
  explicit ByteSpan(std::string_view text)
      : data(reinterpret_cast<const std::uint8_t*>(text.data())), size(text.size()) {}

  const std::uint8_t* Data() const { return data; }
  std::size_t Size() const { return size; }
  bool Empty() const { return size == 0; }
  const std::uint8_t* begin() const { return data; }
  const std::uint8_t* end() const { return data + size; }

  bool Contains(std::uint64_t offset, std::uint64_t count) const { return offset <= size && count <= size - offset; }

  // The bytes from an offset on, at most `count` and at most those there are.
  ByteSpan Part(std::uint64_t offset, std::uint64_t count) const {
    if (offset >= size) {
      return {};
    }
    return {data + offset, static_cast<std::size_t>(std::min<std::uint64_t>(count, size - offset))};
  }
  ByteSpan From(std::uint64_t offset) const { return Part(offset, size); }

  std::uint8_t U8(std::uint64_t offset) const { return offset < size ? data[offset] : std::uint8_t{0}; }
  std::uint16_t U16(std::uint64_t offset) const {
    return Contains(offset, 2) ? static_cast<std::uint16_t>(data[offset] | data[offset + 1] << 8) : std::uint16_t{0};
  }
  std::uint32_t U32(std::uint64_t offset) const {
    if (!Contains(offset, 4)) {
      return 0;
    }
    // Written out, so that the compiler makes one load of it.
    const std::uint8_t* const at = data + offset;
    return std::uint32_t{at[0]} | std::uint32_t{at[1]} << 8 | std::uint32_t{at[2]} << 16 | std::uint32_t{at[3]} << 24;
  }
  std::uint64_t U64(std::uint64_t offset) const {
    return Contains(offset, 8) ? U32(offset) | std::uint64_t{U32(offset + 4)} << 32 : 0;
  }

  // All bytes as 8-bit characters, zeros and all.
  std::string_view Text() const { return {reinterpret_cast<const char*>(data), size}; }
  // The characters from an offset up to a zero, the end, or `limit` of them.
  std::string_view TextAt(std::uint64_t offset, std::size_t limit) const {
    const std::string_view text = Part(offset, limit).Text();
    return text.substr(0, text.find('\0'));
  }
  bool StartsWith(std::string_view prefix) const { return Part(0, prefix.size()).Text() == prefix; }

 private:
  const std::uint8_t* data = nullptr;
  std::size_t size = 0;
};

}  // namespace kwa
