#include "package/package_identity.h"

#include <algorithm>

#include "inf/inf_reader.h"

namespace kwa {

PackageIdentity ReadHostPackageIdentity(const InfText& inf) {
  PackageIdentity identity = {"", "", inf.Fault()};
  const auto read = [&](const char* key) {
    std::string value = ReadInfValue(inf, "Version", key);
    if (inf.IsUtf16() && value.find(InfText::kOtherUnit) != std::string::npos) {
      std::replace(value.begin(), value.end(), InfText::kOtherUnit, '?');
      identity.fault =
          std::string("has characters beyond ASCII in ") + key + ", which each Windows reads in its own way";
    }
    return value;
  };
  identity.version = read("DriverVer");
  identity.displayName = read("DriverPackageDisplayName");
  return identity;
}

}  // namespace kwa
