// Security catalogs and the signatures that programs carry: what they cover, and whether they are sound.

#include <gtest/gtest.h>

#include <algorithm>

#include "built_archive.h"
#include "built_image.h"
#include "trust/authenticode.h"
#include "trust/built_signature.h"
#include "trust/catalog.h"

namespace {

constexpr char kSha1[] = "1.3.14.3.2.26";
constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
constexpr char kMd2[] = "1.2.840.113549.2.2";

std::string Member(const std::string& tag, const std::string& attributes) {
  return Der(kDerSequence, Der(kDerOctets, tag) + (attributes.empty() ? "" : Der(kDerSet, attributes)));
}

std::string IndirectMember(const char* algorithm, const std::string& digest) {
  return Member("any tag", DerAttribute(kIndirectDataType, IndirectData(algorithm, digest)));
}

std::string BuildCatalog(unsigned version, const std::string& members) {
  return BuildSignedData({kTrustListType, TrustList(version, members)});
}

// A program without a certificate table, of a size that is a multiple of 8 or not.
std::string Program(std::size_t bytesOfCode = 24) {
  BuiltImage built;
  built.sections = {{".text", kCode, std::string(bytesOfCode, '\x90')}};
  built.directories.resize(16);
  return BuildImage(built);
}

constexpr std::size_t kCheckSum = 0x80 + 24 + 64;
constexpr std::size_t kSecurityEntry = 0x80 + 24 + 96 + 4 * 8;

std::string PaddedParts(const std::string& program) {
  std::string parts = program.substr(0, kCheckSum) + program.substr(kCheckSum + 4, kSecurityEntry - kCheckSum - 4) +
                      program.substr(kSecurityEntry + 8);
  parts.resize((program.size() + 7) / 8 * 8 - 12);
  return parts;
}

// The program with a certificate table of one signature.
std::string WithTable(std::string program, const std::string& signature) {
  program.resize((program.size() + 7) / 8 * 8);
  std::string table = WordBytes(static_cast<std::uint32_t>(8 + signature.size())) + WordBytes(0x00020200) + signature;
  table.resize((table.size() + 7) / 8 * 8);
  PutWord(program, kSecurityEntry, static_cast<std::uint32_t>(program.size()));
  PutWord(program, kSecurityEntry + 4, static_cast<std::uint32_t>(table.size()));
  return program + table;
}

SignedParts PartsFor(const std::string& program) {
  return {kIndirectDataType, IndirectData(kSha256, DigestBytes(PaddedParts(program), "SHA256"))};
}

std::string Signed(const std::string& program) {
  return WithTable(program, BuildSignedData(PartsFor(program)));
}

std::string Shown(const kwa::Check& check) {
  return check ? "" : check.error().what;
}

std::string Shown(const std::vector<kwa::Signature>& signatures) {
  std::string text;
  for (const kwa::Signature& signature : signatures) {
    text += (signature.isNested ? "nested: " : "") + signature.signer + ": " + Shown(signature.check);
    for (const kwa::Timestamp& timestamp : signature.timestamps) {
      text += std::string(timestamp.isRfc3161 ? " [RFC 3161 " : " [old ") + timestamp.time + ": " +
              Shown(timestamp.check) + "]";
    }
    text += "\n";
  }
  return text;
}

std::string EmbeddedIn(const std::string& program) {
  kwa::FileDigests digests{kwa::ByteSpan(program)};
  return Shown(ReadEmbeddedSignatures(digests));
}

std::string ShownCatalog(const std::string& file) {
  const kwa::Result<kwa::Catalog> catalog = kwa::ReadCatalog(kwa::ByteSpan(file));
  return catalog ? Shown(catalog->signatures) : catalog.error().what;
}

std::string Utf16(const std::string& text) {
  std::string wide;
  for (const char character : text) {
    wide += {character, '\0'};
  }
  return wide;
}

TEST(Trust, CatalogCovers) {
  const std::string text = "[Version]\r\n";
  const std::string hexTag = Utf16("39488A95FF3BD1C8E34DC7B728BB935F5032E1EE") + std::string(2, '\0');
  const std::string program = Program(21);
  const auto sha1 = [](const std::string& bytes) { return DigestBytes(bytes, "SHA1"); };
  const auto sha256 = [](const std::string& bytes) { return DigestBytes(bytes, "SHA256"); };
  const struct {
    const char* what;
    unsigned version;
    std::string members;
    std::string file;
    bool isCovered;
  } cases[] = {
      {"hexadecimal tag", 1, Member(hexTag, ""), text, true},
      {"raw tag", 2, Member(DigestBytes(text, "SHA512"), ""), text, true},
      {"indirect data", 2, IndirectMember(kSha256, sha256(text)), text, true},
      {"the second member", 1, IndirectMember(kSha1, sha1("other")) + Member(hexTag, ""), text, true},
      {"image digest", 1, IndirectMember(kSha1, sha1(PaddedParts(program))), program, true},
      {"image digest of a signed program", 2, Member(sha256(PaddedParts(program)), ""), Signed(program), true},
      {"flat digest of a program", 2, Member(sha256(program), ""), program, true},
      {"another digest", 2, Member(sha256("other"), ""), text, false},
      {"a tag beside other indirect data", 2,
       Member(sha256(text), DerAttribute(kIndirectDataType, IndirectData(kSha256, sha256("other")))), text, false},
      {"an algorithm that does not fit", 2, IndirectMember(kSha1, sha256(text)), text, false},
      {"an unknown algorithm", 2, IndirectMember(kMd2, sha256(text)), text, false},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    const std::string file = BuildCatalog(test.version, test.members);
    const kwa::Result<kwa::Catalog> catalog = kwa::ReadCatalog(kwa::ByteSpan(file));
    ASSERT_TRUE(catalog) << catalog.error().what;
    kwa::FileDigests digests{kwa::ByteSpan(test.file)};
    EXPECT_EQ(test.isCovered, Covers(*catalog, digests));
    EXPECT_EQ(test.version, catalog->version);
    EXPECT_EQ("Tester: \n", Shown(catalog->signatures));
  }
}

TEST(Trust, CatalogsAndTheirSignatures) {
  const std::string tag = Member("some tag", "");
  const std::string list = TrustList(2, tag);
  const std::string good = BuildSignedData({kTrustListType, list});
  for (std::size_t size = 0; size < good.size(); ++size) {
    const std::string beginning = good.substr(0, size);
    EXPECT_FALSE(kwa::ReadCatalog(kwa::ByteSpan(beginning))) << size;
  }
  std::string changed = good;
  changed.replace(changed.find("some tag"), 8, "same tag");
  std::string brokenSignature = good;
  brokenSignature.back() ^= 1;
  std::string changedAttribute = good;
  changedAttribute[good.rfind(DigestBytes(list.substr(2), "SHA256")) - 20] ^= 1;
  std::string manyMembers;
  for (int i = 0; i < 100001; ++i) {
    manyMembers += Member("", "");
  }
  const char kUnfit[] = "Tester: does not fit the signer's certificate\n";
  const char kDamagedMember[] = "is a catalog whose member 2 is damaged";
  const std::pair<std::string, std::string> cases[] = {
      {good + "more", "Tester: \n"},
      {BuildSignedData({kIndirectDataType, TrustList(2, "")}), "is signed data, but no catalog"},
      {BuildSignedData({kTrustListType, IndirectData(kSha1, "d")}), "is a catalog whose list of members is damaged"},
      {BuildCatalog(2, tag + IndirectMember(kSha1, "")), kDamagedMember},
      {BuildCatalog(2, tag + Der(0x02, "\x01")), kDamagedMember},
      {BuildCatalog(2, tag + tag.substr(0, 4)), kDamagedMember},
      {BuildCatalog(2, manyMembers), "is a catalog of more than 100000 members"},
      {BuildSignedData({kTrustListType, list, 17}), "has more than 16 signers"},
      {changed, "Tester: does not fit what it signs\n"},
      {brokenSignature, kUnfit},
      {changedAttribute, kUnfit},
      {BuildSignedData({kTrustListType, list, 1, false}), ": comes without the signer's certificate\n"},
      {BuildSignedData({kTrustListType, list, 2}), "Tester: \nTester: \n"},
      {BuildSignedData({kTrustListType, list, 0}), ""},
  };
  for (const auto& [file, shown] : cases) {
    EXPECT_EQ(shown, ShownCatalog(file));
  }
}

TEST(Trust, EmbeddedSignatures) {
  const std::string program = Program();
  const std::string good = Signed(program);
  const std::string signature = BuildSignedData(PartsFor(program));
  std::string otherCheckSum = good;
  PutWord(otherCheckSum, kCheckSum, 0x12345678);
  std::string otherByte = good;
  otherByte[program.size() - 1] = 'x';
  std::string shortEntry = good;
  PutWord(shortEntry, kwa::ByteSpan(good).U32(kSecurityEntry), 7);
  std::string tableInHeaders = good;
  PutWord(tableInHeaders, kSecurityEntry, kSecurityEntry);
  const char kChanged[] = "Tester: does not fit the file, which was changed\n";
  const char kDamaged[] = ": is not all there: the certificate table is damaged\n";
  const std::pair<std::string, std::string> cases[] = {
      {program, ""},
      {"no program", ""},
      {good, "Tester: \n"},
      {Signed(Program(21)), "Tester: \n"},
      {otherCheckSum, "Tester: \n"},
      {WithTable(program, signature + "stuffed"), "Tester: \n"},
      {otherByte, kChanged},
      {good + "behind the", kChanged},
      {good.substr(0, good.size() - 8), kDamaged},
      {shortEntry, kDamaged},
      {tableInHeaders, kDamaged},
      {WithTable(program, "no signature"), ": is no signed data\n"},
      {WithTable(program, BuildSignedData({kIndirectDataType, TrustList(2, ""), 0})),
       ": is missing: the certificate table holds nothing that is signed\n"},
      {WithTable(program, BuildCatalog(2, "")), "Tester: is not one of a program\n"},
      {WithTable(program, BuildSignedData({kIndirectDataType, TrustList(2, "")})), "Tester: is not one of a program\n"},
  };
  for (const auto& [file, shown] : cases) {
    EXPECT_EQ(shown, EmbeddedIn(file));
  }
}

TEST(Trust, NestedSignaturesAndTimestamps) {
  const std::string program = Program();
  const auto nested = [](const std::string& inner) {
    return [inner](const std::string&) { return DerAttribute("1.3.6.1.4.1.311.2.4.1", inner); };
  };
  const std::string old = "Tester:  [old 2014-02-13 12:00:00 UTC: ";
  const std::string rfc3161 = "Tester:  [RFC 3161 ";
  const std::pair<std::function<std::string(const std::string&)>, std::string> cases[] = {
      {nested(BuildSignedData(PartsFor(program))), "Tester: \nnested: Tester: \n"},
      {nested(BuildSignedData(PartsFor(Program(80)))),
       "Tester: \nnested: Tester: does not fit the file, which was changed\n"},
      {nested(Der(kDerSequence, "")), "Tester: \nnested: : is no signed data\n"},
      {[](const std::string& signature) { return CounterSignature(signature, false); }, old + "]\n"},
      {[](const std::string& signature) { return CounterSignature(signature, true); }, old + "]\n"},
      {[](const std::string&) { return CounterSignature("another", false); }, old + "does not fit what it signs]\n"},
      {TimestampToken, rfc3161 + "2014-02-13 12:00:00 UTC: ]\n"},
      {[](const std::string&) { return TimestampToken("another"); },
       rfc3161 + "2014-02-13 12:00:00 UTC: is one of another signature]\n"},
      {[](const std::string&) { return DerAttribute("1.3.6.1.4.1.311.3.3.1", Der(kDerSequence, "")); },
       rfc3161 + ": is unreadable]\n"},
  };
  for (const auto& [unsignedAttributes, shown] : cases) {
    SignedParts parts = PartsFor(program);
    parts.unsignedAttributes = unsignedAttributes;
    EXPECT_EQ(shown, EmbeddedIn(WithTable(program, BuildSignedData(parts))));
  }

  SignedParts deep = PartsFor(program);
  for (int i = 0; i < 20; ++i) {
    deep.unsignedAttributes = nested(BuildSignedData(deep));
  }
  const std::string signatures = EmbeddedIn(WithTable(program, BuildSignedData(deep)));
  EXPECT_EQ(17, std::count(signatures.begin(), signatures.end(), '\n')) << signatures;
  EXPECT_NE(std::string::npos, signatures.find(": is one of more than 16, and not read\n")) << signatures;
}

}  // namespace
