#include "trust/signature.h"

#include <openssl/ts.h>

#include <array>
#include <ctime>
#include <deque>
#include <memory>

#include "trust/asn1_value.h"
#include "trust/digest.h"
#include "trust/signer_check.h"

namespace kwa {
namespace {

constexpr std::size_t kMaxSignatures = 16;
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

Timestamp ReadCounterSignature(ByteSpan element, const SignerInfo& signer, Certificates* certificates) {
  SignerInfo counterSigner;
  if (!ReadSignerInfo(element, &counterSigner)) {
    return {false, "", "is unreadable"};
  }
  const ByteSpan signingTime = AttributeValue(ByteSpan(counterSigner.signedAttributes), kSigningTime);
  const Asn1Value<ASN1_TIME> time(signingTime, ASN1_ITEM_rptr(ASN1_TIME));
  return {false, TimeText(time.Get()),
          CheckSigner(counterSigner, ByteSpan(signer.signature), certificates, SignerKind::CounterSigner).fault};
}

Timestamp ReadTimestampToken(ByteSpan element, const SignerInfo& signer) {
  SignedData token;
  std::string fault;
  if (element.Size() > kMaxTimestampSize || !ReadSignedData(element, &token, &fault) || token.signers.empty() ||
      token.contentType != kTimestampContent) {
    return {true, "", "is unreadable"};
  }
  const unsigned char* at = reinterpret_cast<const unsigned char*>(token.content.data());
  const std::unique_ptr<TS_TST_INFO, decltype(&TS_TST_INFO_free)> info(
      d2i_TS_TST_INFO(nullptr, &at, static_cast<long>(token.content.size())), &TS_TST_INFO_free);
  ERR_clear_error();
  if (!info) {
    return {true, "", "is unreadable"};
  }
  Timestamp timestamp = {true, TimeText(TS_TST_INFO_get_time(info.get())), ""};
  TS_MSG_IMPRINT* const imprint = TS_TST_INFO_get_msg_imprint(info.get());
  const std::string digest = TextOf(TS_MSG_IMPRINT_get_msg(imprint));
  if (digest != DigestOf(ByteSpan(signer.signature), DigestName(TS_MSG_IMPRINT_get_algo(imprint)))) {
    timestamp.fault = "is one of another signature";
  } else {
    Certificates certificates(token.certificates);
    timestamp.fault = CheckSigner(token.signers.front(), token.SignedOctets(), &certificates, SignerKind::Signer).fault;
  }
  return timestamp;
}

std::optional<Timestamp> ReadTimestamp(const SignerInfo& signer, Certificates* certificates) {
  const ByteSpan attributes(signer.unsignedAttributes);
  if (const ByteSpan token = AttributeValue(attributes, kTimestampToken); !token.Empty()) {
    return ReadTimestampToken(token, signer);
  }
  if (const ByteSpan counterSignature = AttributeValue(attributes, kCounterSignature); !counterSignature.Empty()) {
    return ReadCounterSignature(counterSignature, signer, certificates);
  }
  return std::nullopt;
}

bool HasRoom(std::vector<Signature>* signatures) {
  if (signatures->size() == kMaxSignatures) {
    signatures->push_back({"", "is one of more than 16, and not read", false, {}});
  }
  return signatures->size() < kMaxSignatures;
}

// Appends the signatures of signed data itself, and to *nested the signed data within them.
void AppendOwnSignatures(ByteSpan bytes, bool isNested, const ContentFault& contentFault,
                         std::vector<Signature>* signatures, std::deque<std::string>* nested) {
  SignedData data;
  if (std::string fault; !ReadSignedData(bytes, &data, &fault) && HasRoom(signatures)) {
    signatures->push_back({"", fault, isNested, {}});
    return;
  }
  Certificates certificates(data.certificates);
  for (const SignerInfo& signer : data.signers) {
    if (!HasRoom(signatures)) {
      return;
    }
    SignerCheck check = CheckSigner(signer, data.SignedOctets(), &certificates, SignerKind::Signer);
    if (check.fault.empty()) {
      check.fault = contentFault(data);
    }
    signatures->push_back({check.name, check.fault, isNested, ReadTimestamp(signer, &certificates)});
    ForEachAttributeValue(ByteSpan(signer.unsignedAttributes), kNestedSignature, [&](ByteSpan value) {
      nested->emplace_back(value.Text());
      return nested->size() <= kMaxSignatures;
    });
  }
}

}  // namespace

void AppendSignatures(ByteSpan bytes, const ContentFault& contentFault, std::vector<Signature>* signatures) {
  std::deque<std::string> nested;
  AppendOwnSignatures(bytes, false, contentFault, signatures, &nested);
  for (; !nested.empty(); nested.pop_front()) {
    AppendOwnSignatures(ByteSpan(nested.front()), true, contentFault, signatures, &nested);
  }
}

}  // namespace kwa
