#include "inf/package_identity.h"

#include "inf/inf_reader.h"

namespace kwa {

PackageIdentity ReadHostPackageIdentity(ByteSpan inf) {
  return {ReadInfValue(inf, "Version", "DriverVer"), ReadInfValue(inf, "Version", "DriverPackageDisplayName")};
}

}  // namespace kwa
