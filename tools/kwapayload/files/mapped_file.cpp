#include "files/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "files/tool_failure.h"

namespace kwa {
namespace {

// Maps an open file whole. Returns what is wrong with it, or "".
std::string Map(int file, ByteSpan* bytes) {
  struct stat status = {};
  if (::fstat(file, &status) != 0) {
    return WithSystemText("cannot be read", errno);
  }
  if (!S_ISREG(status.st_mode)) {
    return "is not a file";
  }
  if (status.st_size == 0) {
    return "";
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  void* const view = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
  if (view == MAP_FAILED) {
    return WithSystemText("cannot be read", errno);
  }
  *bytes = {static_cast<const std::uint8_t*>(view), size};
  return "";
}

}  // namespace

MappedFile::MappedFile(const std::filesystem::path& path) {
  // A pipe without a writer must not keep this waiting.
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) {
    throw ToolFailure(path, WithSystemText("cannot be read", errno));
  }
  const std::string fault = Map(file, &bytes);
  ::close(file);
  if (!fault.empty()) {
    throw ToolFailure(path, fault);
  }
}

MappedFile::~MappedFile() {
  if (!bytes.Empty()) {
    // munmap does not change what it unmaps.
    ::munmap(const_cast<std::uint8_t*>(bytes.Data()), bytes.Size());
  }
}

}  // namespace kwa
