#pragma once

// Signs the sample's programs and its catalog.

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <filesystem>
#include <memory>
#include <string>

namespace kwa {

// Of every signature, so that the same content gives the same bytes.
constexpr char kSigningTime[] = "140213120000Z";

struct Signer {
  std::shared_ptr<EVP_PKEY> key;
  std::shared_ptr<X509> certificate;
};

// Reads a PEM file that holds a private key and then its certificate. Throws std::runtime_error.
Signer ReadSigner(const std::filesystem::path& path);

// PKCS #7 signed data in DER around a sequence, given without its tag and length. contentType is the object identifier
// of its type in dotted form. Throws std::runtime_error.
std::string SignedMessage(const Signer& signer, const char* contentType, const std::string& sequence);

enum class DigestKind { ProgramImage, WholeFile };

// The structure in which embedded signatures and catalogs hold the SHA-256 digest of a file: its type, and the content
// of its sequence.
constexpr char kIndirectDataType[] = "1.3.6.1.4.1.311.2.1.4";
std::string IndirectDataContent(DigestKind kind, const std::string& digest);

}  // namespace kwa
