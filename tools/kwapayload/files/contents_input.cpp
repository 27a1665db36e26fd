#include "files/contents_input.h"

#include <utility>
#include <vector>

#include "files/mapped_file.h"
#include "files/tool_failure.h"

namespace kwa {

PayloadContents ReadContentsFile(const std::filesystem::path& path) {
  const MappedFile file(path);
  auto contents = ReadPayloadContents(file.Bytes());
  if (!contents) {
    std::vector<FileFault> faults;
    for (const Fault& fault : contents.error()) {
      faults.push_back({path, fault.what});
    }
    throw ToolFailure(std::move(faults));
  }
  return std::move(*contents);
}

}  // namespace kwa
