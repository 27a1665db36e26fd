#include "support/bounded_text.h"

#include <windows.h>

#include <cerrno>
#include <cstring>

namespace kwa {
namespace {

int FailInvalidParameter(int error) {
  errno = error;
  OutputDebugStringA("Invalid parameter passed to C runtime function.\n");
  return error;
}

int FailEmptied(char* destination, int error) {
  destination[0] = '\0';
  return FailInvalidParameter(error);
}

// Copies source to destination + length; length is less than capacity. A source that does not fit is not copied in
// part: its rest would stay after a shorter path that is copied there next, and the shell would take it for a second
// path to delete.
int CopyAt(char* destination, std::size_t length, std::size_t capacity, const char* source) {
  const std::size_t size = std::strlen(source) + 1;
  if (size > capacity - length) {
    return FailEmptied(destination, ERANGE);
  }
  std::memcpy(destination + length, source, size);
  return 0;
}

}  // namespace

int strcpy_s(char* destination, std::size_t capacity, const char* source) {
  if (destination == nullptr || capacity == 0) {
    return FailInvalidParameter(EINVAL);
  }
  if (source == nullptr) {
    return FailEmptied(destination, EINVAL);
  }
  return CopyAt(destination, 0, capacity, source);
}

int strcat_s(char* destination, std::size_t capacity, const char* source) {
  if (destination == nullptr || capacity == 0) {
    return FailInvalidParameter(EINVAL);
  }
  if (source == nullptr) {
    return FailEmptied(destination, EINVAL);
  }
  const void* const terminator = std::memchr(destination, '\0', capacity);
  if (terminator == nullptr) {
    return FailEmptied(destination, EINVAL);
  }
  const auto length = static_cast<std::size_t>(static_cast<const char*>(terminator) - destination);
  return CopyAt(destination, length, capacity, source);
}

void AppendPath(char* destination, const char* source) {
  strcat_s(destination, kTextCapacity, source);
}

}  // namespace kwa
