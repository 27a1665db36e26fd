#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "base/fault.h"
#include "trust/signed_data.h"

struct x509_st;  // libcrypto's certificate

namespace kwa {

// The certificates that come with signed data. Those after the 32nd, and those larger than 16 KiB, are left out.
using Certificates = std::vector<std::shared_ptr<const x509_st>>;
Certificates ReadCertificates(const std::string& encodedList);

struct SignerCheck {
  std::string name;         // the common name in the certificate, UTF-8 as it is; "" where there is none
  Check check;              // whether the signature holds
  std::string certificate;  // its SHA-256 in hexadecimal digits; "" where there is none
};

enum class SignerKind { Signer, CounterSigner };

// Checks one signer: the digest of what is signed, and the signature with the certificate's key.
//
// content  what is signed
// kind     some old counter-signatures sign a digest alone, without its algorithm
SignerCheck CheckSigner(const SignerInfo& signer, ByteSpan content, const Certificates& certificates, SignerKind kind);

// Why something that is made with an algorithm that libcrypto lacks cannot be checked.
std::string UnknownAlgorithmText(const std::string& algorithm);

}  // namespace kwa
