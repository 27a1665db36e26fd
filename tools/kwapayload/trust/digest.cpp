#include "trust/digest.h"

#include <openssl/evp.h>

#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace kwa {
namespace {

std::string ImageDigest(const PeImage& image, const std::string& algorithm) {
  const std::uint64_t optionalHeader = std::uint64_t{image.headerOffset} + 24;
  const ByteSpan table = image.CertificateTable();
  // What is left out: offsets in the file and sizes.
  std::vector<std::pair<std::uint64_t, std::uint64_t>> gaps = {{optionalHeader + 64, 4}};  // the checksum
  if (image.directories.size() > kPeSecurityDirectory) {
    gaps.emplace_back(optionalHeader + image.OptionalHeaderSize() + kPeSecurityDirectory * 8, 8);
  }
  if (!table.Empty()) {
    gaps.emplace_back(table.Data() - image.file.Data(), table.Size());
  }
  Digest digest(algorithm);
  std::uint64_t at = 0;
  for (const auto& [offset, size] : gaps) {
    if (offset < at) {
      return "";
    }
    digest.Add(image.file.Part(at, offset - at));
    at = offset + size;
  }
  digest.Add(image.file.From(at));
  constexpr std::size_t kAlignment = 8;
  const std::size_t padding = (kAlignment - (image.file.Size() - table.Size()) % kAlignment) % kAlignment;
  digest.Add(ByteSpan(std::string(padding, '\0')));
  return digest.Bytes();
}

// For a program that cannot be read, Windows computes no digest at all (Windows SDK blog, "Why
// CryptCATAdminCalcHashFromFileHandle fails with a seemingly unexpected error code").
bool HasPeSignature(ByteSpan file) {
  return file.StartsWith("MZ") && file.From(file.U32(0x3C)).StartsWith(std::string_view("PE\0\0", 4));
}

}  // namespace

Digest::Digest(const std::string& algorithm) : context(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
  const EVP_MD* const kind = EVP_get_digestbyname(algorithm.c_str());
  isGood = kind != nullptr && EVP_DigestInit_ex(context.get(), kind, nullptr) == 1;
}

void Digest::Add(ByteSpan part) {
  isGood = isGood && EVP_DigestUpdate(context.get(), part.Data(), part.Size()) == 1;
}

std::string Digest::Bytes() {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
  unsigned size = 0;
  isGood = isGood && EVP_DigestFinal_ex(context.get(), digest.data(), &size) == 1;
  return isGood ? std::string(digest.begin(), digest.begin() + size) : "";
}

std::string DigestOf(ByteSpan bytes, const std::string& algorithm) {
  Digest digest(algorithm);
  digest.Add(bytes);
  return digest.Bytes();
}

std::string Hex(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text += kDigits[static_cast<unsigned char>(byte) / 16];
    text += kDigits[static_cast<unsigned char>(byte) % 16];
  }
  return text;
}

std::string Sha256Hex(ByteSpan bytes) {
  return Hex(DigestOf(bytes, "SHA256"));
}

FileDigests::FileDigests(ByteSpan fileBytes) : file(fileBytes) {
  if (Result<PeImage> read = ReadPeImage(file)) {
    image = std::move(*read);
  }
}

const std::string& FileDigests::Of(const std::string& algorithm) {
  const auto [known, isNew] = digests.try_emplace(algorithm);
  if (isNew && image) {
    known->second = ImageDigest(*image, algorithm);
  } else if (isNew && !HasPeSignature(file)) {
    known->second = DigestOf(file, algorithm);
  }
  return known->second;
}

std::string DigestWithLineEnds(ByteSpan text, std::string_view lineEnd, const std::string& algorithm) {
  constexpr std::size_t kBufferSize = 64 * 1024;
  Digest digest(algorithm);
  std::string buffer;
  for (const char character : text.Text()) {
    if (character != '\n') {
      buffer += character;
    } else {
      if (!buffer.empty() && buffer.back() == '\r') {
        buffer.pop_back();
      }
      buffer += lineEnd;
    }
    if (buffer.size() > kBufferSize) {
      // A CR at the end may turn out to be part of a line end.
      digest.Add(ByteSpan(buffer).Part(0, buffer.size() - 1));
      buffer.erase(0, buffer.size() - 1);
    }
  }
  digest.Add(ByteSpan(buffer));
  return digest.Bytes();
}

}  // namespace kwa
