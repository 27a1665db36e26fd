// Security catalogs and the signatures in programs: what they cover, and whether they hold.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "built_archive.h"
#include "built_image.h"
#include "program.h"
#include "trust/asn1.h"
#include "trust/built_signature.h"
#include "trust/catalog.h"
#include "trust/signature.h"
#include "verify/faulty_file.h"

namespace {

constexpr char kSha1[] = "1.3.14.3.2.26";
constexpr char kSha256[] = "2.16.840.1.101.3.4.2.1";
constexpr char kMd2[] = "1.2.840.113549.2.2";
constexpr char kNestedType[] = "1.3.6.1.4.1.311.2.4.1";
constexpr char kMd5[] = "1.2.840.113549.2.5";

std::string Member(const std::string& tag, const std::string& attributes) {
  return Der(kDerSequence, Der(kDerOctets, tag) + (attributes.empty() ? "" : Der(kDerSet, attributes)));
}

std::string IndirectMember(const std::string& tag, const char* algorithm, const std::string& digest) {
  return Member(tag, DerAttribute(kIndirectDataType, IndirectData(algorithm, digest)));
}

std::string FileNameAttribute(const std::string& name) {
  const std::string bigEndianFile("\0F\0i\0l\0e", 8);
  return DerAttribute("1.3.6.1.4.1.311.12.2.1",
                      Der(kDerSequence, Der(0x1E, bigEndianFile) + Der(0x02, "\1") + Der(kDerOctets, Utf16(name))));
}

// The element with lists of indefinite length, down to a depth.
std::string Indefinite(kwa::ByteSpan element, int depth) {
  constexpr unsigned kConstructed = 0x20;
  if (depth == 0 || (element.U8(0) & kConstructed) == 0) {
    return std::string(element.Text());
  }
  std::string bytes = std::string(element.Part(0, 1).Text()) + '\x80';
  kwa::ForEachElement(element, [&bytes, depth](const kwa::Asn1Element& part) {
    bytes += Indefinite(part.whole, depth - 1);
    return true;
  });
  return bytes + std::string(2, '\0');
}

std::string BuildCatalog(unsigned version, const std::string& members) {
  return BuildSignedData({kTrustListType, TrustList(version, members)});
}

// A program without a certificate table, of a size that is a multiple of 8 or not.
std::string Program(std::size_t bytesOfCode = 24, std::size_t directoryCount = 16) {
  BuiltImage built;
  built.sections = {{".text", kCode, std::string(bytesOfCode, '\x90')}};
  built.directories.resize(directoryCount);
  return BuildImage(built);
}

constexpr std::size_t kCheckSum = 0x80 + 24 + 64;
constexpr std::size_t kSecurityEntry = 0x80 + 24 + 96 + 4 * 8;

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
  return {kIndirectDataType, IndirectData(kSha256, kwa::ImageDigest(program))};
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

TEST(Trust, CatalogCovers) {
  const std::string text = "[Version]\r\n";
  const std::string hexTag = Utf16("39488A95FF3BD1C8E34DC7B728BB935F5032E1EE") + std::string(2, '\0');
  const std::string program = Program(21);
  const std::string fewDirectories = Program(24, 4);
  const std::string damaged = program.substr(0, kSecurityEntry);
  std::string withoutCheckSum = fewDirectories;
  withoutCheckSum.erase(kCheckSum, 4);
  const auto sha1 = [](const std::string& bytes) { return DigestBytes(bytes, "SHA1"); };
  const auto sha256 = [](const std::string& bytes) { return DigestBytes(bytes, "SHA256"); };
  const std::string md5 = DigestBytes(text, "MD5");
  const struct {
    const char* what;
    unsigned version;
    std::string members;
    std::string file;
    bool isCovered;
  } cases[] = {
      {"hexadecimal tag and indirect data", 1, IndirectMember(hexTag, kSha1, sha1(text)), text, true},
      {"raw tag", 2, Member(sha256(text), ""), text, true},
      {"raw SHA-1 tag", 2, Member(sha1(text), ""), text, true},
      {"the second member", 1, Member(sha1("other"), "") + Member(hexTag, ""), text, true},
      {"image digest", 2, Member(kwa::ImageDigest(program), ""), program, true},
      {"image digest of a signed program", 2, Member(kwa::ImageDigest(program), ""), Signed(program), true},
      {"no security directory", 2, Member(sha256(withoutCheckSum), ""), fewDirectories, true},
      {"DOS program", 2, Member(sha256("MZ"), ""), "MZ", true},
      {"digest of a program's file", 2, Member(sha256(program), ""), program, false},
      {"digest of a damaged program's file", 2, Member(sha256(damaged), ""), damaged, false},
      {"another tag", 2, IndirectMember(sha256("other"), kSha256, sha256(text)), text, false},
      {"a tag of another algorithm", 2, IndirectMember(hexTag, kSha256, sha256(text)), text, false},
      {"a label as tag", 1, IndirectMember(Utf16("any.inf"), kSha1, sha1(text)), text, false},
      {"other indirect data", 2, IndirectMember(sha256(text), kSha256, sha256("other")), text, false},
      {"an algorithm that does not fit", 2, IndirectMember(sha256(text), kSha1, sha256(text)), text, false},
      {"MD5", 1, Member(md5, "") + IndirectMember(md5, kMd5, md5), text, false},
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

TEST(Trust, FileNamesInCatalogs) {
  const std::string file = BuildCatalog(2, Member("tag", FileNameAttribute("b.Inf") + FileNameAttribute("A.sys")));
  EXPECT_EQ((std::set<std::string>{"A.SYS", "B.INF"}), kwa::ReadCatalog(kwa::ByteSpan(file))->fileNames);
}

TEST(Trust, LineEndsThatACatalogCovers) {
  const std::string longLine(64 * 1024, 'a');  // its CR is the last byte of the buffer
  const struct {
    std::string covered;
    std::string file;
    const char* lineEnds;
  } cases[] = {
      {"a\r\nb\r\n", "a\nb\r\n", "CR LF"},        {"a\nb\r", "a\r\nb\r", "LF"}, {"\r\r\n", "\r\r\n", "CR LF"},
      {longLine + "\n", longLine + "\r\n", "LF"}, {"a\n", "ab\r\n", ""},
  };
  for (const auto& test : cases) {
    const std::string file = BuildCatalog(2, Member(DigestBytes(test.covered, "SHA256"), ""));
    EXPECT_EQ(test.lineEnds,
              CoveringLineEnds(*kwa::ReadCatalog(kwa::ByteSpan(file)), kwa::ByteSpan(test.file)).value_or(""));
  }
}

TEST(Trust, CatalogsAndTheirSignatures) {
  const std::string tag = Member("some tag", "");
  const std::string list = TrustList(2, tag);
  const std::string good = BuildSignedData({kTrustListType, list});
  const auto replaced = [](std::string message, const std::string& bytes, const std::string& by) {
    return message.replace(message.rfind(bytes), by.size(), by);
  };
  const std::size_t signer = good.rfind("\x02\x01\x01\x30\x16");  // its version, after its tag and its length
  std::string damagedSigner = good;
  damagedSigner[signer] = kDerSet;
  std::string longSigner = good;
  ++longSigner[signer - 1];
  std::string brokenSignature = good;
  brokenSignature.back() ^= 1;
  std::string manyMembers;
  for (int i = 0; i < 100000; ++i) {
    manyMembers += Member("", "");
  }
  const auto inForm = [&list](SignerForm form) {
    return BuildSignedData({kTrustListType, list, 1, true, nullptr, form});
  };
  const std::string pss = inForm(SignerForm::Pss);
  const auto withNested = [&list](const SignedParts& inner) {
    const std::string nested = DerAttribute(kNestedType, BuildSignedData(inner));
    return BuildSignedData({kTrustListType, list, 1, true, [nested](const std::string&) { return nested; }});
  };
  const char kGood[] = "Tester: \n";
  const char kUnfit[] = "Tester: does not fit the signer's certificate\n";
  const char kForeign[] = "Tester: \nnested: Tester: is one of another catalog\n";
  const char kDamagedMember[] = "is a catalog whose member 2 is damaged";
  const std::pair<std::string, std::string> cases[] = {
      {good + "more", kGood},
      {good.substr(0, good.size() - 1), "is no signed data"},
      {BuildSignedData({kIndirectDataType, TrustList(2, "")}), "is signed data, but no catalog"},
      {BuildSignedData({kTrustListType, IndirectData(kSha1, "d")}), "is a catalog whose list of members is damaged"},
      {BuildCatalog(2, tag + IndirectMember("tag", kSha1, "")), kDamagedMember},
      {BuildCatalog(2, tag + Der(0x02, "\x01")), kDamagedMember},
      {BuildCatalog(2, tag + tag.substr(0, 4)), kDamagedMember},
      {BuildCatalog(2, manyMembers), kGood},
      {BuildCatalog(2, manyMembers + Member("", "")), "is a catalog of more than 100000 members"},
      {Der(kDerSequence, kwa::DerObjectId("1.2.840.113549.1.7.2") + Der(0xA0, Der(kDerSequence, ""))),
       "is no signed data"},
      {BuildSignedData({kTrustListType, list, 17}), "has more than 16 signers"},
      {replaced(good, "some tag", "same tag"), "Tester: does not fit what it signs\n"},
      {brokenSignature, kUnfit},
      {replaced(good, "140213", "150213"), kUnfit},
      {BuildSignedData({kTrustListType, list, 1, false}), ": comes without the signer's certificate\n"},
      {BuildSignedData({kTrustListType, list, 2}), "Tester: \nTester: \n"},
      {damagedSigner, "has a damaged list of signers"},
      {longSigner, "has a damaged list of signers"},
      {BuildSignedData({kTrustListType, list, 0}), ""},
      {withNested({kTrustListType, list}), "Tester: \nnested: Tester: \n"},
      {withNested({kTrustListType, TrustList(2, "")}), kForeign},
      {withNested({kIndirectDataType, list}), kForeign},
      {inForm(SignerForm::ByKeyIdentifier), kGood},
      {inForm(SignerForm::BareDigest), kUnfit},
      {pss, kGood},
      {replaced(pss, "\x04\x02\x01", "\x04\x02\x03"),
       "Tester: names two algorithms for one digest: SHA256 and SHA512\n"},
      {replaced(pss, "\x0D\x01\x01\x08", "\x0D\x01\x01\x7F"),
       "Tester: is made with the algorithm 1.2.840.113549.1.1.127, which is not known here\n"},
      {Indefinite(kwa::ByteSpan(good), 5), kGood},
      {Indefinite(kwa::ByteSpan(good), 6),
       "Tester: has signed attributes of indefinite length, which are not known here\n"},
  };
  for (const auto& [file, shown] : cases) {
    const kwa::Result<kwa::Catalog> catalog = kwa::ReadCatalog(kwa::ByteSpan(file));
    EXPECT_EQ(shown, catalog ? Shown(catalog->signatures) : catalog.error().what);
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
      {good + "8 bytes.", kChanged},
      {good.substr(0, good.size() - 8), kDamaged},
      {shortEntry, kDamaged},
      {tableInHeaders, kDamaged},
      {WithTable(program, "no signature"), ": is no signed data\n"},
      {WithTable(program, BuildSignedData({kIndirectDataType, TrustList(2, ""), 0})),
       ": is missing: the certificate table holds nothing that is signed\n"},
      {WithTable(program, BuildCatalog(2, "")), "Tester: is not one of a program\n"},
      {WithTable(program, BuildSignedData({kIndirectDataType, IndirectData(kMd2, "digest")})),
       "Tester: is made with the algorithm 1.2.840.113549.2.2, which is not known here\n"},
      {WithTable(program, BuildSignedData({kIndirectDataType, TrustList(2, "")})), "Tester: is not one of a program\n"},
  };
  for (const auto& [file, shown] : cases) {
    EXPECT_EQ(shown, EmbeddedIn(file));
  }
}

TEST(Trust, NestedSignaturesAndTimestamps) {
  const std::string program = Program();
  const auto nested = [](const std::string& inner) {
    return [inner](const std::string&) { return DerAttribute(kNestedType, inner); };
  };
  const std::string old = "Tester:  [old 2014-02-13 12:00:00 UTC: ";
  const std::string token = "Tester:  [RFC 3161 2014-02-13 12:00:00 UTC: ";
  const std::pair<std::function<std::string(const std::string&)>, std::string> cases[] = {
      {nested(BuildSignedData(PartsFor(program))), "Tester: \nnested: Tester: \n"},
      {nested(BuildSignedData(PartsFor(Program(80)))),
       "Tester: \nnested: Tester: does not fit the file, which was changed\n"},
      {nested(Der(kDerSequence, "")), "Tester: \nnested: : is no signed data\n"},
      {[](const std::string& signature) { return CounterSignature(signature); }, old + "]\n"},
      {[](const std::string& signature) { return CounterSignature(signature, SignerForm::BareDigest); },
       "Tester:  [old : states no time]\n"},
      {[](const std::string&) { return DerAttribute("1.2.840.113549.1.9.6", std::string("\5\0\5\0\5\0\5\0\5\0", 10)); },
       "Tester:  [old : is unreadable] [old : is unreadable] [old : is unreadable] [old : is unreadable]"
       " [old : is one of more than 4, and not read]\n"},
      {[](const std::string& signature) { return TimestampToken(signature); }, token + "]\n"},
      {[](const std::string&) { return TimestampToken("another"); }, token + "is one of another signature]\n"},
      {[](const std::string& signature) { return CounterSignature("another") + TimestampToken(signature); },
       token + "] [old 2014-02-13 12:00:00 UTC: does not fit what it signs]\n"},
      {[](const std::string&) { return DerAttribute("1.3.6.1.4.1.311.3.3.1", Der(kDerSequence, "")); },
       "Tester:  [RFC 3161 : is unreadable]\n"},
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
