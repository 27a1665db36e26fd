#include "program.h"

#include <cstdint>
#include <stdexcept>

#include "base/byte_span.h"
#include "der.h"
#include "padding.h"
#include "pe/pe_image.h"
#include "trust/digest.h"

namespace kwa {
namespace {

constexpr std::size_t kAlignment = 8;  // of the certificate table

// Offsets in the file of the header fields that signing changes.
struct HeaderFields {
  std::size_t checkSum;
  std::size_t directory;  // the security directory's entry: offset and size of the certificate table
};

HeaderFields FieldsOf(const std::string& program) {
  const Result<PeImage> image = ReadPeImage(ByteSpan(program));
  if (!image) {
    throw std::runtime_error("its program " + image.error().what);
  }
  const std::size_t optionalHeader = image->headerOffset + 24;
  return {optionalHeader + 64, optionalHeader + (image->isPlus ? 144 : 128)};
}

std::string Number(std::size_t value) {
  std::string bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes += static_cast<char>(value >> shift & 0xFF);
  }
  return bytes;
}

// The checksum is the sum of all 16-bit words, with each carry added to it, plus the file's size.
void SetCheckSum(std::string* program) {
  const std::size_t field = FieldsOf(*program).checkSum;
  program->replace(field, 4, Number(0));
  const ByteSpan bytes(*program);
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < bytes.Size(); i += 2) {
    sum += bytes.U8(i) | bytes.U8(i + 1) << 8;
  }
  while (sum > 0xFFFF) {
    sum = (sum & 0xFFFF) + (sum >> 16);
  }
  program->replace(field, 4, Number(static_cast<std::size_t>(sum) + program->size()));
}

std::string CertificateTable(const std::string& program, const Signer& signer) {
  std::string message =
      SignedMessage(signer, kIndirectDataType, IndirectDataContent(DigestKind::ProgramImage, ImageDigest(program)));
  message.append((kAlignment - message.size() % kAlignment) % kAlignment, '\0');
  const std::string revisionAndType("\x00\x02\x02\x00", 4);
  return Number(4 + revisionAndType.size() + message.size()) + revisionAndType + message;
}

}  // namespace

std::string ImageDigest(const std::string& program) {
  const HeaderFields fields = FieldsOf(program);
  const std::size_t table = ByteSpan(program).U32(fields.directory);
  std::string image = program.substr(0, table == 0 ? program.size() : table);
  image.append((kAlignment - image.size() % kAlignment) % kAlignment, '\0');
  image.erase(fields.directory, 8).erase(fields.checkSum, 4);
  return DigestOf(ByteSpan(image), "SHA256");
}

std::string MakeProgram(const std::string& built, std::size_t size) {
  std::string program = Padded(built, size);
  SetCheckSum(&program);
  return program;
}

std::string MakeSignedProgram(const std::string& built, std::size_t size, const Signer& signer) {
  // The size of the signature does not depend on the content that is signed.
  const std::size_t tableSize = CertificateTable(built, signer).size();
  RequireSize(built.size() + tableSize, size);
  if (size % kAlignment != 0) {
    throw std::runtime_error("is a signed program, so its size must be a multiple of 8");
  }
  std::string program = Padded(built, size - tableSize);
  const std::string table = CertificateTable(program, signer);
  program.replace(FieldsOf(program).directory, 8, Number(program.size()) + Number(table.size()));
  program += table;
  SetCheckSum(&program);
  return program;
}

}  // namespace kwa
