#pragma once

#include <string>
#include <vector>

#include "base/byte_span.h"
#include "trust/signed_data.h"

struct x509_st;  // libcrypto's certificate

namespace kwa {

// The certificates that come with signed data. Each is decoded once, however many signers ask for it.
class Certificates {
 public:
  // encodedList  must outlive this; what is behind the 64th, or larger than 16 KiB, is left out
  explicit Certificates(const std::string& encodedList);
  ~Certificates();

  // The signer's, which belongs to this object, or null.
  const x509_st* Find(const SignerInfo& signer);

 private:
  struct One;
  std::vector<One> list;
};

struct SignerCheck {
  std::string name;   // the certificate's common name, escaped; "" where there is none
  std::string fault;  // why the signature does not hold, such as "does not fit the signer's certificate"; "" if it does
};

enum class SignerKind { Signer, CounterSigner };

// Checks one signer: the digest of what is signed, and the signature with the certificate's key.
//
// content  what is signed
// kind     some old counter-signatures sign a digest as it stands, without its algorithm
SignerCheck CheckSigner(const SignerInfo& signer, ByteSpan content, Certificates* certificates, SignerKind kind);

}  // namespace kwa
