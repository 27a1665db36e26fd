#pragma once

#include <string>

#include "base/byte_span.h"
#include "trust/signed_data.h"

namespace kwa {

struct SignerCheck {
  std::string name;   // the certificate's common name, escaped; "" where there is none
  std::string fault;  // why the signature does not hold, such as "does not fit the signer's certificate"; "" if it does
};

enum class SignerKind { Signer, CounterSigner };

// Checks one signer: the digest of what is signed, and the signature with the certificate's key.
//
// content       what is signed
// certificates  an encoded list, searched for the signer's; those behind the 64th, and larger than 16 KiB, are left out
// kind          some old counter-signatures sign a digest as it stands, without its algorithm
SignerCheck CheckSigner(const SignerInfo& signer, ByteSpan content, const std::string& certificates, SignerKind kind);

}  // namespace kwa
