#pragma once

// The files of the sample payload.

#include <filesystem>

namespace kwa {

// What to make, and from what. The defaults are paths in the source tree after script/demo has built there.
struct SampleRequest {
  std::filesystem::path contents = "payload/contents.json";
  std::filesystem::path files = "tools/sample/files";  // folder of the files that are copied, and of the signer's key
  std::filesystem::path programsX86 = "build/sample/programs-x86";
  std::filesystem::path programsX64 = "build/sample/programs-x64";
  std::filesystem::path output;
  // Makes the package's next version: DriverVer 02/20/2014,1.0.43.0, version records that fit it, larger drivers.
  bool isNextVersion = false;
};

// Makes every listed file, of its listed size, in output/a and output/b, which hold nothing else afterwards. The next
// version needs a new or empty output folder and brings its own list, output/contents.json. Makes all contents before
// it writes any file: a list that cannot be met changes nothing. Throws a std::exception with a line for the user.
void MakeSamplePayload(const SampleRequest& request);

}  // namespace kwa
