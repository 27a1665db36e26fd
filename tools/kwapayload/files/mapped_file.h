#pragma once

#include <filesystem>

#include "base/byte_span.h"

namespace kwa {

// A file mapped for reading: an installer of 1.9 GB takes no more memory than the parts that are looked at, and the
// kernel may drop those again. If another program shortens the file meanwhile, the signal BUS ends this one.
class MappedFile {
 public:
  // Throws ToolFailure when the file cannot be opened, is not a regular file, or cannot be mapped.
  explicit MappedFile(const std::filesystem::path& path);
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile();

  // Valid as long as this object.
  ByteSpan Bytes() const { return bytes; }

 private:
  ByteSpan bytes;
};

}  // namespace kwa
