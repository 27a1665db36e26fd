#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "base/fault.h"
#include "trust/digest.h"
#include "trust/signed_data.h"

// Whether signatures of untrusted files fit what they sign and the certificates that come with them. Whether a
// certificate is trusted, revoked or expired is for Windows to judge.

namespace kwa {

struct Timestamp {
  bool isRfc3161;    // otherwise it is a counter-signature of the old kind
  std::string time;  // "2014-02-13 12:00:00 UTC"; "" where it is missing or cannot be read
  Check check;       // whether it fits the signature
};

struct Signature {
  std::string signer;  // the common name in the certificate, UTF-8 as it is; "" where there is none
  Check check;         // whether it holds; the fault is a phrase such as "does not fit the signer's certificate"
  bool isNested;       // it is part of another signature, which comes before it
  std::vector<Timestamp> timestamps;
  std::string certificate = "";  // the SHA-256 of the certificate in hexadecimal digits; "" where there is none
};

// Says whether the content of signed data fits the file that it signs.
using ContentCheck = std::function<Check(const SignedData&)>;

// Appends the signatures of PKCS #7 signed data, then those nested in them. Signed data that cannot be read becomes a
// signature with that fault, and so does the rest after the 16th signature.
void AppendSignatures(ByteSpan bytes, const ContentCheck& checkContent, std::vector<Signature>& signatures);

// The signatures in the certificate table of a Windows program; none for any other file. A signature over another
// digest than that of the program's image does not hold. A table that is cut off or holds no signature is a signature
// that does not hold.
std::vector<Signature> ReadEmbeddedSignatures(FileDigests& file);

}  // namespace kwa
