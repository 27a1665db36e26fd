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

// Maps a whole open file. `path` is for messages.
ByteSpan Map(int file, const std::filesystem::path& path) {
  struct stat status = {};
  if (::fstat(file, &status) != 0) {
    throw ToolFailure(path, WithSystemText("cannot be read", errno));
  }
  if (!S_ISREG(status.st_mode)) {
    throw ToolFailure(path, "is not a file");
  }
  if (status.st_size == 0) {
    return {};
  }
  const auto size = static_cast<std::size_t>(status.st_size);
  void* const view = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
  if (view == MAP_FAILED) {
    throw ToolFailure(path, WithSystemText("cannot be read", errno));
  }
  return {static_cast<const std::uint8_t*>(view), size};
}

struct Descriptor {
  explicit Descriptor(int openFile) : file(openFile) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { ::close(file); }

  const int file;
};

}  // namespace

MappedFile::MappedFile(const std::filesystem::path& path) {
  // Without O_NONBLOCK, opening a pipe waits for its writer.
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) {
    throw ToolFailure(path, WithSystemText("cannot be read", errno));
  }
  const Descriptor descriptor(file);
  bytes = Map(file, path);
}

MappedFile::~MappedFile() {
  if (!bytes.Empty()) {
    // munmap does not change the bytes that it unmaps.
    ::munmap(const_cast<std::uint8_t*>(bytes.Data()), bytes.Size());
  }
}

}  // namespace kwa
