#include "package/package_identity.h"

#include <algorithm>

#include "inf/profile_value.h"

namespace kwa {

PackageIdentity ReadHostPackageIdentity(const InfText& inf) {
  PackageIdentity identity;
  identity.certainty = CheckEncoding(inf);
  const auto read = [&](const char* key) {
    IdentityValue value = {ReadProfileValue(inf, "Version", key, kProfileValueLimit + 1), false};
    value.isCut = value.text.size() > kProfileValueLimit;
    value.text.resize(std::min(value.text.size(), kProfileValueLimit));
    if (inf.Encoding() == InfEncoding::Utf16LittleEndian && value.text.find(InfText::kOtherUnit) != std::string::npos) {
      std::replace(value.text.begin(), value.text.end(), InfText::kOtherUnit, '?');
      identity.certainty =
          Failure(std::string("has characters beyond ASCII in ") + key + ", which each Windows reads in its own way");
    }
    return value;
  };
  identity.version = read("DriverVer");
  identity.displayName = read("DriverPackageDisplayName");
  return identity;
}

}  // namespace kwa
