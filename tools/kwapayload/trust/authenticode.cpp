#include "trust/authenticode.h"

#include "trust/digest.h"
#include "trust/signer_check.h"

namespace kwa {
namespace {

constexpr char kIndirectData[] = "1.3.6.1.4.1.311.2.1.4";

Check CheckImage(const SignedData& data, FileDigests& file) {
  const Result<IndirectData> stated = ReadIndirectData(ByteSpan(data.content));
  if (data.contentType != kIndirectData || !stated) {
    return Failure("is not one of a program");
  }
  if (DigestOf({}, stated->algorithm).empty()) {
    return Failure(UnknownAlgorithmText(stated->algorithm));
  }
  if (stated->digest != file.Of(stated->algorithm)) {
    return Failure("does not fit the file, which was changed");
  }
  return {};
}

}  // namespace

std::vector<Signature> ReadEmbeddedSignatures(FileDigests& file) {
  constexpr std::uint32_t kHeaderSize = 8;
  constexpr std::uint16_t kPkcsSignedData = 2;
  constexpr std::uint64_t kAlignment = 8;
  std::vector<Signature> signatures;
  const PeImage* const image = file.Image();
  if (image == nullptr) {
    return signatures;
  }
  ByteSpan table = image->CertificateTable();
  bool isWhole = table.Size() == image->Directory(kPeSecurityDirectory).size;
  while (isWhole && !table.Empty()) {
    const std::uint32_t size = table.U32(0);
    isWhole = size >= kHeaderSize && size <= table.Size();
    if (isWhole && table.U16(6) == kPkcsSignedData) {
      AppendSignatures(
          table.Part(kHeaderSize, size - kHeaderSize),
          [&file](const SignedData& data) { return CheckImage(data, file); }, signatures);
    }
    table = table.From((size + kAlignment - 1) / kAlignment * kAlignment);
  }
  // Windows ignores bytes that were added to the table after a signature.
  if (signatures.empty() && (!isWhole || !image->CertificateTable().Empty())) {
    const char* const fault = isWhole ? "is missing: the certificate table holds nothing that is signed"
                                      : "is not all there: the certificate table is damaged";
    signatures.push_back({"", Failure(fault), false, {}});
  }
  return signatures;
}

}  // namespace kwa
