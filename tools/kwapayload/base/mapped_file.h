#pragma once

#include <cstddef>
#include <filesystem>

#include "base/byte_span.h"

namespace kwa {

// A file mapped for reading: an installer of 1.9 GB takes no more memory than the parts that are looked at. Another
// program that shortens the file meanwhile ends this one.
class MappedFile {
 public:
  // Throws ToolFailure when the file cannot be opened, is not a regular file, or cannot be mapped.
  explicit MappedFile(const std::filesystem::path& path);
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile();

  // Valid as long as this object.
  ByteSpan Bytes() const { return bytes; }

  // Gives back the memory of a part of Bytes() that has been dealt with. Bytes() stays as it is: what is looked at
  // again is read again.
  void Forget(ByteSpan part) const;

  // The same as a function, for those who know bytes and no files. Valid as long as this object.
  auto Forgetter() const {
    return [this](ByteSpan part) { Forget(part); };
  }

  // Calls visit with consecutive pieces of a part of Bytes() and forgets each behind it, so that a part of any size
  // takes little memory.
  template <typename Visit>
  void ForEachPiece(ByteSpan part, Visit visit) const {
    constexpr std::size_t kPieceSize = 4 * 1024 * 1024;
    for (std::size_t offset = 0; offset < part.Size(); offset += kPieceSize) {
      const ByteSpan piece = part.Part(offset, kPieceSize);
      visit(piece);
      Forget(piece);
    }
  }

 private:
  ByteSpan bytes;
};

}  // namespace kwa
