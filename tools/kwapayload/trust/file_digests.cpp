#include "trust/file_digests.h"

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace kwa {
namespace {

constexpr std::size_t kPieceSize = 4 * 1024 * 1024;

class Digest {
 public:
  explicit Digest(const std::string& algorithm) {
    const EVP_MD* const kind = EVP_get_digestbyname(algorithm.c_str());
    isGood = kind != nullptr && EVP_DigestInit_ex(context.get(), kind, nullptr) == 1;
  }

  void Add(ByteSpan bytes) { isGood = isGood && EVP_DigestUpdate(context.get(), bytes.Data(), bytes.Size()) == 1; }

  void AddLarge(ByteSpan bytes, const ForgetBytes& forget) {
    for (std::size_t offset = 0; isGood && offset < bytes.Size(); offset += kPieceSize) {
      const ByteSpan piece = bytes.Part(offset, kPieceSize);
      Add(piece);
      if (forget) {
        forget(piece);
      }
    }
  }

  std::string Bytes() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest = {};
    unsigned size = 0;
    isGood = isGood && EVP_DigestFinal_ex(context.get(), digest.data(), &size) == 1;
    return isGood ? std::string(digest.begin(), digest.begin() + size) : "";
  }

 private:
  struct Free {
    void operator()(EVP_MD_CTX* digest) const { EVP_MD_CTX_free(digest); }
  };

  std::unique_ptr<EVP_MD_CTX, Free> context{EVP_MD_CTX_new()};
  bool isGood = false;
};

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

std::string ImageDigest(const PeImage& image, const std::string& algorithm, const ForgetBytes& forget) {
  const std::vector<ByteSpan> parts = SignedParts(image);
  if (parts.empty()) {
    return "";
  }
  Digest digest(algorithm);
  for (const ByteSpan part : parts) {
    digest.AddLarge(part, forget);
  }
  const std::size_t size = image.file.Size() - image.CertificateTable().Size();
  constexpr std::size_t kAlignment = 8;
  digest.Add(ByteSpan(std::string_view("\0\0\0\0\0\0\0", (kAlignment - size % kAlignment) % kAlignment)));
  return digest.Bytes();
}

}  // namespace

std::string DigestOf(ByteSpan bytes, const std::string& algorithm) {
  Digest digest(algorithm);
  digest.Add(bytes);
  return digest.Bytes();
}

std::string DigestWithLineEnds(ByteSpan text, const std::string& lineEnd, const std::string& algorithm) {
  Digest digest(algorithm);
  const std::string_view all = text.Text();
  std::size_t begin = 0;
  for (std::size_t end = all.find('\n'); end != std::string_view::npos; end = all.find('\n', begin)) {
    const bool hasReturn = end != begin && all[end - 1] == '\r';
    digest.Add(text.Part(begin, end - begin - (hasReturn ? 1 : 0)));
    digest.Add(ByteSpan(lineEnd));
    begin = end + 1;
  }
  digest.Add(text.From(begin));
  return digest.Bytes();
}

FileDigests::FileDigests(ByteSpan fileBytes, ForgetBytes forgetBytes)
    : file(fileBytes), forget(std::move(forgetBytes)) {
  std::string ignored;
  if (!ReadPeImage(file, &image.emplace(), &ignored)) {
    image.reset();
  }
}

const std::string& FileDigests::OfFile(const std::string& algorithm) {
  const auto [known, isNew] = fileDigests.try_emplace(algorithm);
  if (isNew) {
    Digest digest(algorithm);
    digest.AddLarge(file, forget);
    known->second = digest.Bytes();
  }
  return known->second;
}

const std::string& FileDigests::OfImage(const std::string& algorithm) {
  const auto [known, isNew] = imageDigests.try_emplace(algorithm);
  if (isNew && image) {
    known->second = ImageDigest(*image, algorithm, forget);
  }
  return known->second;
}

}  // namespace kwa
