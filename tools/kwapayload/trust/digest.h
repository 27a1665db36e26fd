#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/byte_span.h"
#include "pe/pe_image.h"

struct evp_md_ctx_st;  // libcrypto's digest

namespace kwa {

// A digest of bytes that come in parts. An algorithm goes by libcrypto's name, such as "SHA256".
class Digest {
 public:
  explicit Digest(const std::string& algorithm);

  void Add(ByteSpan part);
  // The digest's bytes, "" where libcrypto lacks the algorithm. Called once, at the end.
  std::string Bytes();

 private:
  std::shared_ptr<evp_md_ctx_st> context;
  bool isGood;
};

// The digest of bytes that are all there.
std::string DigestOf(ByteSpan bytes, const std::string& algorithm);

// Bytes as lower-case hexadecimal digits.
std::string Hex(const std::string& bytes);

// The SHA-256 digest in lower-case hexadecimal digits.
std::string Sha256Hex(ByteSpan bytes);

// The digests by which signatures and catalogs identify one file. Each is computed when it is first asked for, and
// kept: a file may have 1.9 GB.
class FileDigests {
 public:
  // fileBytes  must outlive this object
  explicit FileDigests(ByteSpan fileBytes);

  // Null for what is no Windows program.
  const PeImage* Image() const { return image ? &*image : nullptr; }

  // For a Windows program, the digest of its image: without what signing changes, which is the checksum, the security
  // directory's entry and the certificate table, and padded with zeros to a multiple of 8. For any other file, the
  // digest of all bytes. "" where libcrypto lacks the algorithm, and for a program with damaged headers or a
  // certificate table that overlaps them.
  const std::string& Of(const std::string& algorithm);

 private:
  ByteSpan file;
  std::optional<PeImage> image;
  std::map<std::string, std::string> digests;  // by algorithm
};

// The digest that a text would have with other line ends.
//
// lineEnd  in place of each LF or CR LF; it ends with LF
std::string DigestWithLineEnds(ByteSpan text, std::string_view lineEnd, const std::string& algorithm);

}  // namespace kwa
