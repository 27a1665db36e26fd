// Fuzzes all that reads a package's INF: the values that the installer takes and the list of files.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "inf/catalog_names.h"
#include "inf/inf_reader.h"
#include "inf/inf_source_files.h"
#include "inf/package_identity.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const kwa::InfText inf(kwa::ByteSpan(data, size));
  const kwa::PackageIdentity identity = kwa::ReadHostPackageIdentity(inf);
  if (identity.version.size() > kwa::kInfValueLimit || identity.displayName.size() > kwa::kInfValueLimit) {
    std::abort();
  }
  kwa::ReadInfSourceFiles(inf);
  kwa::CatalogName(inf, "amd64");
  return 0;
}
