#pragma once

// Signs the sample's programs and its catalog.

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <filesystem>
#include <memory>
#include <string>

namespace kwa {

struct Signer {
  std::shared_ptr<EVP_PKEY> key;
  std::shared_ptr<X509> certificate;
};

// Reads a PEM file that holds a private key and then its certificate. Throws ToolFailure.
Signer ReadSigner(const std::filesystem::path& path);

// PKCS #7 signed data in DER around content, itself the DER of a sequence, of the type that contentType names by its
// dotted numbers. The same content gives the same bytes: the time of signing is fixed. Throws std::runtime_error.
std::string SignedData(const Signer& signer, const char* contentType, const std::string& content);

enum class DigestKind { ProgramImage, WholeFile };

// The type and the DER of what embedded signatures and catalogs say of a file: its SHA-256 digest.
constexpr char kIndirectDataType[] = "1.3.6.1.4.1.311.2.1.4";
std::string IndirectData(DigestKind kind, const std::string& digest);

}  // namespace kwa
