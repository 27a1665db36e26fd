#include "base/input_file.h"

#include <cerrno>
#include <utility>

#include "files/tool_failure.h"

namespace kwa {

InputFile::InputFile(std::filesystem::path filePath)
    : path(std::move(filePath)), stream(std::fopen(path.c_str(), "rb")) {
  if (stream == nullptr) {
    throw ToolFailure(path, WithSystemText("cannot be opened", errno));
  }
  std::setvbuf(stream.get(), nullptr, _IONBF, 0);
}

std::size_t InputFile::Read(void* buffer, std::size_t size) {
  const std::size_t count = std::fread(buffer, 1, size, stream.get());
  if (count < size && std::ferror(stream.get()) != 0) {
    throw ToolFailure(path, WithSystemText("cannot be read", errno));
  }
  return count;
}

}  // namespace kwa
