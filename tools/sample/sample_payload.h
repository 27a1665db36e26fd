#pragma once

// The files of the sample payload.

#include <filesystem>

namespace kwa {

// Where samplepayload takes its input from.
struct SampleSources {
  std::filesystem::path contents;     // the list of contents, payload/contents.json
  std::filesystem::path files;        // folder of the licence texts and the signer's key
  std::filesystem::path programsX86;  // folders of the built programs
  std::filesystem::path programsX64;
};

// Makes every listed file in output/a or output/b, of its listed size; removes other files from these two folders and
// leaves alone the files that are right already. Makes all of them before it writes any, so that a list that cannot be
// met changes nothing. Throws ToolFailure.
void MakeSamplePayload(const SampleSources& sources, const std::filesystem::path& output);

}  // namespace kwa
