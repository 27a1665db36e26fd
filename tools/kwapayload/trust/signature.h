#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "trust/signed_data.h"

// What signatures of untrusted files are worth by themselves: whether they fit what they sign and the certificate that
// comes with them. Whether anybody trusts that certificate, had it revoked or let it run out is for Windows to judge.

namespace kwa {

struct Timestamp {
  bool isRfc3161;     // else a counter-signature of the old kind
  std::string time;   // "2014-02-13 12:00:00 UTC"; "" where it cannot be read
  std::string fault;  // why it does not fit the signature; "" where it does
};

// One signature. Texts are escaped, fit for a terminal.
struct Signature {
  std::string signer;  // the certificate's common name; "" where there is none
  std::string fault;   // what is wrong with it, such as "does not fit the signer's certificate"; "" for a good one
  bool isNested;       // stands within another one, which comes before it
  std::optional<Timestamp> timestamp;
};

// Says what is wrong between the content of signed data and the file it stands for; "" where it fits.
using ContentFault = std::function<std::string(const SignedData&)>;

// Appends the signatures of PKCS #7 signed data, nested ones behind it. What cannot be read is a signature with that
// fault, and so is the rest behind the 16th.
void AppendSignatures(ByteSpan bytes, const ContentFault& contentFault, std::vector<Signature>* signatures);

}  // namespace kwa
