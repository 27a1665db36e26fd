// Security catalogs and the signatures in programs: what they cover, and whether they hold.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "program.h"
#include "trust/built_signature.h"
#include "trust/catalog.h"
#include "trust/signature.h"

namespace {

constexpr char kMd2[] = "1.2.840.113549.2.2";
constexpr char kMd5[] = "1.2.840.113549.2.5";

std::string IndirectMember(const std::string& tag, const char* algorithm, const std::string& digest) {
  return Member(tag, DerAttribute(kIndirectDataType, IndirectData(algorithm, digest)));
}

std::string BuildCatalog(unsigned version, const std::string& members) {
  return BuildSignedData({kTrustListType, TrustList(version, members)});
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
  const std::string program = Program(17);
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
      {"raw SHA-1 tag", 2, Member(sha1(text)), text, true},
      {"the second member", 1, Member(sha1("other")) + Member(hexTag), text, true},
      {"image digest", 2, Member(kwa::ImageDigest(program)), program, true},
      {"image digest of a signed program", 2, Member(kwa::ImageDigest(program)), Signed(program), true},
      {"no security directory", 2, Member(sha256(withoutCheckSum)), fewDirectories, true},
      {"DOS program", 2, Member(sha256("MZ")), "MZ", true},
      {"digest of a program's file", 2, Member(sha256(program)), program, false},
      {"digest of a damaged program's file", 2, Member(sha256(damaged)), damaged, false},
      {"another tag", 2, IndirectMember(sha256("other"), kSha256, sha256(text)), text, false},
      {"a tag of another algorithm", 2, IndirectMember(hexTag, kSha256, sha256(text)), text, false},
      {"a label as tag", 1, IndirectMember(Utf16("any.inf"), kSha1, sha1(text)), text, false},
      {"other indirect data", 2, IndirectMember(sha256(text), kSha256, sha256("other")), text, false},
      {"an algorithm that does not fit", 2, IndirectMember(sha256(text), kSha1, sha256(text)), text, false},
      {"MD5", 1, Member(md5) + IndirectMember(md5, kMd5, md5), text, false},
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

TEST(Trust, NamesAndWindowsInCatalogs) {
  const std::string manyElements = NameValue("File", "b.Inf", Repeated(100, Der(V_ASN1_INTEGER, "\1")));
  const std::string file =
      BuildCatalog(2, Member("tag", manyElements + NameValue("File", "A.sys") + NameValue("OSAttr", "2:6.0")));
  const kwa::Catalog catalog = kwa::ReadCatalog(kwa::ByteSpan(file)).value();
  EXPECT_EQ((std::set<std::string>{"A.SYS", "B.INF"}), catalog.fileNames);
  EXPECT_EQ(std::set<std::string>{"2:6.0"}, catalog.windows);
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
    const std::string file = CatalogOf({test.covered});
    EXPECT_EQ(test.lineEnds,
              CoveringLineEnds(*kwa::ReadCatalog(kwa::ByteSpan(file)), kwa::ByteSpan(test.file)).value_or(""));
  }
}

TEST(Trust, CatalogsAndTheirSignatures) {
  const std::string tag = Member("some tag");
  const std::string list = TrustList(2, tag);
  const std::string good = BuildSignedData({kTrustListType, list});
  const auto replaced = [](const std::string& message, const std::string& bytes, const std::string& by) {
    return Replaced(message, message.rfind(bytes), by);
  };
  const std::string signer = "\x02\x01\x01\x30\x16";  // its version, after its tag and its length
  const std::size_t length = good.rfind(signer) - 1;
  const std::string manyMembers = Repeated(100000, Member(""));
  const auto inForm = [&list](SignerForm form) {
    return BuildSignedData({kTrustListType, list, 1, true, nullptr, form});
  };
  const std::string pss = inForm(SignerForm::Pss);
  const auto withNested = [&list](const SignedParts& inner) {
    return BuildSignedData({kTrustListType, list, 1, true, Nested(BuildSignedData(inner))});
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
      {BuildCatalog(2, manyMembers + Member("")), "is a catalog of more than 100000 members"},
      {Der(kDerSequence, kwa::DerObjectId("1.2.840.113549.1.7.2") + Der(0xA0, Der(kDerSequence, ""))),
       "is no signed data"},
      {BuildSignedData({kTrustListType, list, 16}), Repeated(16, kGood)},
      {BuildSignedData({kTrustListType, list, 17}), "has more than 16 signers"},
      {replaced(good, "some tag", "same tag"), "Tester: does not fit what it signs\n"},
      {Replaced(good, good.size() - 1, {static_cast<char>(good.back() ^ 1)}), kUnfit},
      {replaced(good, "140213", "150213"), kUnfit},
      {BuildSignedData({kTrustListType, list, 1, false}), ": comes without the signer's certificate\n"},
      {replaced(good, signer, "\x31"), "has a damaged list of signers"},
      {Replaced(good, length, {static_cast<char>(good[length] + 1)}), "has a damaged list of signers"},
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
      {Indefinite(good, 5), kGood},
      {Indefinite(good, 6), "Tester: has signed attributes of indefinite length, which are not known here\n"},
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
  const auto with = [&good](std::size_t offset, std::uint32_t word) { return Replaced(good, offset, WordBytes(word)); };
  const char kChanged[] = "Tester: does not fit the file, which was changed\n";
  const char kDamaged[] = ": is not all there: the certificate table is damaged\n";
  const std::pair<std::string, std::string> cases[] = {
      {program, ""},
      {"no program", ""},
      {good, "Tester: \n"},
      {Signed(Program(17)), "Tester: \n"},
      {with(kCheckSum, 0x12345678), "Tester: \n"},
      {WithTable(program, signature + "stuffed"), "Tester: \n"},
      {with(program.size() - 4, 0x12345678), kChanged},
      {good + "8 bytes.", kChanged},
      {good.substr(0, good.size() - 8), kDamaged},
      {with(kwa::ByteSpan(good).U32(kSecurityEntry), 7), kDamaged},
      {with(kSecurityEntry, kSecurityEntry), kDamaged},
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
  const std::string old = "Tester:  [old 2014-02-13 12:00:00 UTC: ";
  const std::string token = "Tester:  [RFC 3161 2014-02-13 12:00:00 UTC: ";
  const std::pair<Attributes, std::string> cases[] = {
      {Nested(BuildSignedData(PartsFor(program))), "Tester: \nnested: Tester: \n"},
      {Nested(BuildSignedData(PartsFor(Program(80)))),
       "Tester: \nnested: Tester: does not fit the file, which was changed\n"},
      {Nested(Der(kDerSequence, "")), "Tester: \nnested: : is no signed data\n"},
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
    deep.unsignedAttributes = Nested(BuildSignedData(deep));
  }
  const std::string signatures = EmbeddedIn(WithTable(program, BuildSignedData(deep)));
  EXPECT_EQ(17, std::count(signatures.begin(), signatures.end(), '\n')) << signatures;
  EXPECT_NE(std::string::npos, signatures.find(": is one of more than 16, and not read\n")) << signatures;
}

}  // namespace
