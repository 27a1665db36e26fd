#include "files/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "files/tool_failure.h"

namespace kwa {

MappedFile::MappedFile(const std::filesystem::path& path) {
  // Without O_NONBLOCK, opening a pipe waits for its writer.
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  struct stat status = {};
  bool isRead = file >= 0 && ::fstat(file, &status) == 0;
  const bool isFile = S_ISREG(status.st_mode);
  if (isRead && isFile && status.st_size != 0) {
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const view = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    isRead = view != MAP_FAILED;
    bytes = isRead ? ByteSpan(static_cast<const std::uint8_t*>(view), size) : ByteSpan();
  }
  const int error = errno;
  if (file >= 0) {
    ::close(file);
  }
  if (!isRead || !isFile) {
    throw ToolFailure(path, isRead ? "is not a file" : WithSystemText("cannot be read", error));
  }
}

MappedFile::~MappedFile() {
  if (!bytes.Empty()) {
    // munmap does not change the bytes that it unmaps.
    ::munmap(const_cast<std::uint8_t*>(bytes.Data()), bytes.Size());
  }
}

}  // namespace kwa
