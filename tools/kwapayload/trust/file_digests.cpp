#include "trust/file_digests.h"

#include <string_view>
#include <utility>
#include <vector>

#include "trust/digest.h"

namespace kwa {
namespace {

// The parts of a program that its image digest covers, without the padding. None where the certificate table overlaps
// the headers.
std::vector<ByteSpan> SignedParts(const PeImage& image) {
  const std::uint64_t optionalHeader = std::uint64_t{image.headerOffset} + 24;
  const std::uint64_t checkSum = optionalHeader + 64;
  const std::uint64_t securityEntry = optionalHeader + (image.isPlus ? 112 : 96) + kPeSecurityDirectory * 8;
  const ByteSpan head = image.file.Part(0, checkSum);
  if (image.directories.size() <= kPeSecurityDirectory) {
    return {head, image.file.From(checkSum + 4)};
  }
  const ByteSpan afterCheckSum = image.file.Part(checkSum + 4, securityEntry - checkSum - 4);
  const ByteSpan table = image.CertificateTable();
  if (table.Empty()) {
    return {head, afterCheckSum, image.file.From(securityEntry + 8)};
  }
  const auto tableBegin = static_cast<std::uint64_t>(table.Data() - image.file.Data());
  if (tableBegin < securityEntry + 8) {
    return {};
  }
  return {head, afterCheckSum, image.file.Part(securityEntry + 8, tableBegin - securityEntry - 8),
          image.file.From(tableBegin + table.Size())};
}

std::string ImageDigest(const PeImage& image, const std::string& algorithm) {
  const std::vector<ByteSpan> parts = SignedParts(image);
  if (parts.empty()) {
    return "";
  }
  Digest digest(algorithm);
  for (const ByteSpan part : parts) {
    digest.Add(part);
  }
  const std::size_t size = image.file.Size() - image.CertificateTable().Size();
  constexpr std::size_t kAlignment = 8;
  digest.Add(ByteSpan(std::string_view("\0\0\0\0\0\0\0", (kAlignment - size % kAlignment) % kAlignment)));
  return digest.Bytes();
}

// For a program that cannot be read, Windows computes no digest at all (Windows SDK blog, "Why
// CryptCATAdminCalcHashFromFileHandle fails with a seemingly unexpected error code").
bool HasPeSignature(ByteSpan file) {
  return file.StartsWith("MZ") && file.From(file.U32(0x3C)).StartsWith(std::string_view("PE\0\0", 4));
}

}  // namespace

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
  std::string buffer(kBufferSize, '\0');
  std::size_t size = 0;
  bool isAfterReturn = false;
  for (const char character : text.Text()) {
    if (isAfterReturn && character != '\n') {
      buffer[size++] = '\r';
    }
    isAfterReturn = character == '\r';
    if (character == '\n') {
      size += lineEnd.copy(&buffer[size], lineEnd.size());
    } else if (!isAfterReturn) {
      buffer[size++] = character;
    }
    // One character adds at most three.
    if (size > kBufferSize - 3) {
      digest.Add(ByteSpan(buffer).Part(0, size));
      size = 0;
    }
  }
  digest.Add(ByteSpan(buffer).Part(0, size));
  digest.Add(ByteSpan(isAfterReturn ? "\r" : ""));
  return digest.Bytes();
}

}  // namespace kwa
