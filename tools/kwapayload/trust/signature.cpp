#include "trust/signature.h"

#include <openssl/ts.h>

#include <array>
#include <ctime>
#include <deque>
#include <memory>
#include <utility>

#include "trust/asn1.h"
#include "trust/digest.h"
#include "trust/signer_check.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxSignatures = 16;
constexpr std::size_t kMaxTimestamps = 4;  // of one signature
constexpr std::size_t kMaxTimestampSize = 64 * 1024;

constexpr char kSigningTime[] = "1.2.840.113549.1.9.5";
constexpr char kCounterSignature[] = "1.2.840.113549.1.9.6";
constexpr char kTimestampContent[] = "1.2.840.113549.1.9.16.1.4";
constexpr char kTimestampToken[] = "1.3.6.1.4.1.311.3.3.1";
constexpr char kNestedSignature[] = "1.3.6.1.4.1.311.2.4.1";

std::string TimeText(const ASN1_TIME* time) {
  std::tm parts = {};
  if (time == nullptr || ASN1_TIME_to_tm(time, &parts) != 1) {
    return "";
  }
  std::array<char, 64> text = {};
  return std::string(text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S UTC", &parts));
}

Timestamp ReadCounterSignature(ByteSpan element, const SignerInfo& signer, const Certificates& certificates) {
  const Result<SignerInfo> counterSigner = ReadSignerInfo(element);
  if (!counterSigner) {
    return {false, "", tl::unexpected(counterSigner.error())};
  }
  const ByteSpan signingTime = AttributeValue(ByteSpan(counterSigner->signedAttributes), kSigningTime);
  const auto time = Decoded<ASN1_TIME>(signingTime, ASN1_ITEM_rptr(ASN1_TIME));
  Timestamp timestamp = {false, TimeText(time.get()), {}};
  timestamp.check =
      CheckSigner(*counterSigner, ByteSpan(signer.signature), certificates, SignerKind::CounterSigner).check;
  if (timestamp.check && timestamp.time.empty()) {
    timestamp.check = Failure("states no time");
  }
  return timestamp;
}

Timestamp ReadTimestampToken(ByteSpan element, const SignerInfo& signer) {
  const Timestamp unreadable = {true, "", Failure("is unreadable")};
  if (element.Size() > kMaxTimestampSize) {
    return unreadable;
  }
  const Result<SignedData> token = ReadSignedData(element);
  if (!token || token->signers.empty() || token->contentType != kTimestampContent) {
    return unreadable;
  }
  const unsigned char* at = ByteSpan(token->content).Data();
  const std::unique_ptr<TS_TST_INFO, decltype(&TS_TST_INFO_free)> info(
      d2i_TS_TST_INFO(nullptr, &at, static_cast<long>(token->content.size())), &TS_TST_INFO_free);
  ERR_clear_error();
  if (!info) {
    return unreadable;
  }
  Timestamp timestamp = {true, TimeText(TS_TST_INFO_get_time(info.get())), {}};
  TS_MSG_IMPRINT* const imprint = TS_TST_INFO_get_msg_imprint(info.get());
  const std::string algorithm = DigestName(TS_MSG_IMPRINT_get_algo(imprint));
  const std::string digest = DigestOf(ByteSpan(signer.signature), algorithm);
  if (digest.empty()) {
    timestamp.check = Failure(UnknownAlgorithmText(algorithm));
  } else if (TextOf(TS_MSG_IMPRINT_get_msg(imprint)) != digest) {
    timestamp.check = Failure("is one of another signature");
  } else {
    const Certificates certificates = ReadCertificates(token->certificates);
    timestamp.check =
        CheckSigner(token->signers.front(), token->SignedOctets(), certificates, SignerKind::Signer).check;
  }
  return timestamp;
}

std::vector<Timestamp> ReadTimestamps(const SignerInfo& signer, const Certificates& certificates) {
  std::vector<Timestamp> timestamps;
  for (const char* const type : {kTimestampToken, kCounterSignature}) {
    const bool isRfc3161 = type == kTimestampToken;
    ForEachAttributeValue(ByteSpan(signer.unsignedAttributes), type, [&](const Asn1Element& value) {
      if (timestamps.size() == kMaxTimestamps) {
        timestamps.push_back({isRfc3161, "", Failure("is one of more than 4, and not read")});
      }
      if (timestamps.size() > kMaxTimestamps) {
        return false;
      }
      timestamps.push_back(isRfc3161 ? ReadTimestampToken(value.whole, signer)
                                     : ReadCounterSignature(value.whole, signer, certificates));
      return true;
    });
  }
  return timestamps;
}

bool HasRoom(std::vector<Signature>& signatures) {
  if (signatures.size() == kMaxSignatures) {
    signatures.push_back({"", Failure("is one of more than 16, and not read"), false, {}});
  }
  return signatures.size() < kMaxSignatures;
}

// Appends the signatures of signed data itself, and to `nested` the signed data within them.
void AppendOwnSignatures(ByteSpan bytes, bool isNested, const ContentCheck& checkContent,
                         std::vector<Signature>& signatures, std::deque<std::string>& nested) {
  if (!HasRoom(signatures)) {
    return;
  }
  const Result<SignedData> data = ReadSignedData(bytes);
  if (!data) {
    signatures.push_back({"", tl::unexpected(data.error()), isNested, {}});
    return;
  }
  if (data->signers.empty()) {
    // Its certificates would be decoded in vain: a file has room for thousands.
    return;
  }
  const Certificates certificates = ReadCertificates(data->certificates);
  for (const SignerInfo& signer : data->signers) {
    if (!HasRoom(signatures)) {
      return;
    }
    SignerCheck result = CheckSigner(signer, data->SignedOctets(), certificates, SignerKind::Signer);
    if (result.check) {
      result.check = checkContent(*data);
    }
    signatures.push_back({std::move(result.name), std::move(result.check), isNested,
                          ReadTimestamps(signer, certificates), std::move(result.certificate)});
    ForEachAttributeValue(ByteSpan(signer.unsignedAttributes), kNestedSignature, [&](const Asn1Element& value) {
      nested.emplace_back(value.whole.Text());
      return nested.size() <= kMaxSignatures;
    });
  }
}

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

void AppendSignatures(ByteSpan bytes, const ContentCheck& checkContent, std::vector<Signature>& signatures) {
  std::deque<std::string> nested;
  AppendOwnSignatures(bytes, false, checkContent, signatures, nested);
  for (; !nested.empty(); nested.pop_front()) {
    AppendOwnSignatures(ByteSpan(nested.front()), true, checkContent, signatures, nested);
  }
}

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
