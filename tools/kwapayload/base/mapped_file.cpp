#include "base/mapped_file.h"

#include <cerrno>
#include <cstdint>
#include <limits>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "base/tool_failure.h"

namespace kwa {
namespace {

#ifdef _WIN32

// Maps the file whole. Returns an empty span, and the reason in *error, when it cannot.
ByteSpan Map(const std::filesystem::path& path, std::error_code* error) {
  const auto lastError = [] { return std::error_code(static_cast<int>(::GetLastError()), std::system_category()); };
  const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    *error = lastError();
    return {};
  }
  LARGE_INTEGER size = {};
  const void* view = nullptr;
  if (!::GetFileSizeEx(file, &size)) {
    *error = lastError();
  } else if (size.QuadPart != 0) {
    const HANDLE mapping = ::CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
    view = mapping == nullptr ? nullptr : ::MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0);
    if (view == nullptr) {
      *error = lastError();
    }
    if (mapping != nullptr) {
      ::CloseHandle(mapping);
    }
  }
  ::CloseHandle(file);
  return view == nullptr ? ByteSpan()
                         : ByteSpan(static_cast<const std::uint8_t*>(view), static_cast<std::size_t>(size.QuadPart));
}

void Unmap(ByteSpan bytes) {
  ::UnmapViewOfFile(bytes.Data());
}

// Unlocking pages that are not locked takes them out of the working set; the call fails, and that is as it should be.
void GiveBack(ByteSpan bytes) {
  ::VirtualUnlock(const_cast<std::uint8_t*>(bytes.Data()), bytes.Size());
}

#else

ByteSpan Map(const std::filesystem::path& path, std::error_code* error) {
  const auto lastError = [] { return std::error_code(errno, std::generic_category()); };
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    *error = lastError();
    return {};
  }
  struct stat status = {};
  void* view = nullptr;
  if (::fstat(file, &status) != 0) {
    *error = lastError();
  } else if (static_cast<std::uint64_t>(status.st_size) > std::numeric_limits<std::size_t>::max()) {
    *error = std::make_error_code(std::errc::file_too_large);
  } else if (status.st_size != 0) {
    view = ::mmap(nullptr, static_cast<std::size_t>(status.st_size), PROT_READ, MAP_PRIVATE, file, 0);
    if (view == MAP_FAILED) {
      *error = lastError();
      view = nullptr;
    }
  }
  ::close(file);
  return view == nullptr ? ByteSpan()
                         : ByteSpan(static_cast<const std::uint8_t*>(view), static_cast<std::size_t>(status.st_size));
}

void Unmap(ByteSpan bytes) {
  // munmap does not change what it unmaps.
  ::munmap(const_cast<std::uint8_t*>(bytes.Data()), bytes.Size());
}

void GiveBack(ByteSpan bytes) {
  const auto pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
  auto* const start = const_cast<std::uint8_t*>(bytes.Data());
  const std::uintptr_t intoPage = reinterpret_cast<std::uintptr_t>(start) % pageSize;
  ::madvise(start - intoPage, bytes.Size() + intoPage, MADV_DONTNEED);
}

#endif

}  // namespace

MappedFile::MappedFile(const std::filesystem::path& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    throw ToolFailure(path, "is not a file");
  }
  error.clear();
  bytes = Map(path, &error);
  if (error) {
    throw ToolFailure(path, "cannot be read: " + error.message());
  }
}

MappedFile::~MappedFile() {
  if (!bytes.Empty()) {
    Unmap(bytes);
  }
}

// Not static: who asks for it has the file's mapping in hand.
void MappedFile::Forget(ByteSpan part) const {  // NOLINT(readability-convert-member-functions-to-static)
  if (!part.Empty()) {
    GiveBack(part);
  }
}

}  // namespace kwa
