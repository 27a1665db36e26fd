#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "base/fault.h"
#include "trust/digest.h"
#include "trust/signature.h"

namespace kwa {

// A Windows security catalog: the digests of the files that its signer vouches for.
struct Catalog {
  // 1: members are tagged by their digests in hexadecimal UTF-16 text, mostly SHA-1. 2: by the digests' bytes, mostly
  // SHA-256. 0: the catalog says neither.
  unsigned version;
  std::size_t memberCount;
  // What the catalog covers, by algorithm ("SHA1" or "SHA256"): the digests that are the tag of a member and also in
  // its indirect data, if it has any.
  std::map<std::string, std::set<std::string>> digests;
  std::set<std::string> fileNames;    // upper-case, of members that name one; Windows ignores them
  std::set<std::string> windows;      // the Windows versions that the catalog or its members claim, at most 64; raw
  std::vector<Signature> signatures;  // none in an unsigned catalog
};

// Fails when the bytes are no catalog, are damaged, or hold more than 100000 members.
Result<Catalog> ReadCatalog(ByteSpan file);

// Whether Windows finds a member for the file. Cabinet files are treated as any file here, but not by Windows.
bool Covers(const Catalog& catalog, FileDigests& file);

// "CR LF" or "LF": the line ends with which a text would be covered that is not covered as it is. Nothing where neither
// helps.
std::optional<std::string> CoveringLineEnds(const Catalog& catalog, ByteSpan text);

}  // namespace kwa
