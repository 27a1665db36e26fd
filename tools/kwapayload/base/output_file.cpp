#include "base/output_file.h"

#include <cerrno>
#include <random>
#include <string>
#include <system_error>
#include <utility>

#include "base/tool_failure.h"

namespace kwa {
namespace {

// Not made from the target's name, which may be as long as the file system allows.
std::filesystem::path TemporaryPath(const std::filesystem::path& target) {
  std::random_device random;
  return target.parent_path() / ("kwapayload-" + std::to_string(random()) + ".tmp");
}

}  // namespace

OutputFile::OutputFile(std::filesystem::path targetPath) : target(std::move(targetPath)) {
  std::error_code error;
  const auto status = std::filesystem::status(target, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    throw ToolFailure(target, "exists and is not a file");
  }
  do {
    temporary = TemporaryPath(target);
    // Fails with EEXIST where the file exists, so that nothing, not even a link that someone placed, is followed.
    stream = std::fopen(temporary.c_str(), "wbxe");
  } while (stream == nullptr && errno == EEXIST);
  if (stream == nullptr) {
    throw ToolFailure(target, WithSystemText("cannot be created", errno));
  }
  std::setvbuf(stream, nullptr, _IONBF, 0);
}

OutputFile::~OutputFile() {
  if (stream != nullptr) {
    std::fclose(stream);
  }
  if (!committed) {
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
  }
}

void OutputFile::Write(const void* data, std::size_t size) {
  if (std::fwrite(data, 1, size, stream) != size) {
    throw ToolFailure(target, WithSystemText("cannot be written", errno));
  }
}

void OutputFile::Close() {
  if (std::fclose(std::exchange(stream, nullptr)) != 0) {
    throw ToolFailure(target, WithSystemText("cannot be written", errno));
  }
}

void OutputFile::Commit() {
  if (stream != nullptr) {
    Close();
  }
  std::error_code error;
  std::filesystem::rename(temporary, target, error);
  if (error) {
    throw ToolFailure(target, "cannot be created: " + error.message());
  }
  committed = true;
}

}  // namespace kwa
