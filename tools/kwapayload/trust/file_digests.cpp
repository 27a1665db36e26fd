#include "trust/file_digests.h"

#include <string_view>
#include <utility>
#include <vector>

#include "trust/digest.h"

namespace kwa {
namespace {

// The parts of a program that its image digest covers, without the padding. None where they cannot be told.
std::vector<ByteSpan> SignedParts(const PeImage& image) {
  const std::uint64_t optionalHeader = std::uint64_t{image.headerOffset} + 24;
  const std::uint64_t checkSum = optionalHeader + 64;
  const std::uint64_t securityEntry = optionalHeader + (image.isPlus ? 112 : 96) + kPeSecurityDirectory * 8;
  const ByteSpan head = image.file.Part(0, checkSum);
  if (image.directories.size() <= kPeSecurityDirectory) {
    return {head, image.file.From(checkSum + 4)};
  }
  const ByteSpan behindCheckSum = image.file.Part(checkSum + 4, securityEntry - checkSum - 4);
  const ByteSpan table = image.CertificateTable();
  if (table.Empty()) {
    return {head, behindCheckSum, image.file.From(securityEntry + 8)};
  }
  const auto tableBegin = static_cast<std::uint64_t>(table.Data() - image.file.Data());
  if (tableBegin < securityEntry + 8) {
    return {};
  }
  return {head, behindCheckSum, image.file.Part(securityEntry + 8, tableBegin - securityEntry - 8),
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

}  // namespace

FileDigests::FileDigests(ByteSpan fileBytes) : file(fileBytes) {
  if (Result<PeImage> read = ReadPeImage(file)) {
    image = std::move(*read);
  }
}

const std::string& FileDigests::OfFile(const std::string& algorithm) {
  const auto [known, isNew] = fileDigests.try_emplace(algorithm);
  if (isNew) {
    known->second = DigestOf(file, algorithm);
  }
  return known->second;
}

const std::string& FileDigests::OfImage(const std::string& algorithm) {
  const auto [known, isNew] = imageDigests.try_emplace(algorithm);
  if (isNew && image) {
    known->second = ImageDigest(*image, algorithm);
  }
  return known->second;
}

std::string DigestWithLineEnds(ByteSpan text, const std::string& lineEnd, const std::string& algorithm) {
  constexpr std::size_t kBufferSize = 64 * 1024;
  Digest digest(algorithm);
  std::string buffer;
  for (std::string_view rest = text.Text(); !rest.empty();) {
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    const bool isEnded = end != std::string_view::npos;
    buffer += isEnded && !line.empty() && line.back() == '\r' ? line.substr(0, end - 1) : line;
    buffer += isEnded ? lineEnd : "";
    if (buffer.size() > kBufferSize) {
      digest.Add(ByteSpan(buffer));
      buffer.clear();
    }
    rest.remove_prefix(isEnded ? end + 1 : rest.size());
  }
  digest.Add(ByteSpan(buffer));
  return digest.Bytes();
}

}  // namespace kwa
