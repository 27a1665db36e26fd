#pragma once

#include <map>
#include <optional>
#include <string>

#include "base/byte_span.h"
#include "pe/pe_image.h"

namespace kwa {

// The digests of one file by which others vouch for it, as Digest has them. Each is made when it is first asked for,
// and kept: a file may have 1.9 GB.
class FileDigests {
 public:
  // The bytes must outlive this.
  explicit FileDigests(ByteSpan fileBytes);

  ByteSpan File() const { return file; }
  // Null for what is no Windows program.
  const PeImage* Image() const { return image ? &*image : nullptr; }

  const std::string& OfFile(const std::string& algorithm);
  // Signing leaves out of a Windows program what it changes: checksum, the security directory's entry and the
  // certificate table. The rest is padded with zeros to a multiple of 8. "" for what is no Windows program, or where
  // the certificate table overlaps the headers.
  const std::string& OfImage(const std::string& algorithm);

 private:
  ByteSpan file;
  std::optional<PeImage> image;
  std::map<std::string, std::string> fileDigests;  // by algorithm
  std::map<std::string, std::string> imageDigests;
};

// The digest that a text would have with other line ends.
std::string DigestWithLineEnds(ByteSpan text, const std::string& lineEnd, const std::string& algorithm);

}  // namespace kwa
