#include "files/output_file.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <random>
#include <string>
#include <system_error>
#include <utility>

#include "files/tool_failure.h"

namespace kwa {
namespace {

// Does not contain the target's name, which may already be as long as the file system allows.
std::filesystem::path TemporaryPath(const std::filesystem::path& target) {
  std::random_device random;
  return target.parent_path() / ("kwapayload-" + std::to_string(random()) + ".tmp");
}

constexpr std::array<int, 4> kEndingSignals = {SIGINT, SIGTERM, SIGHUP, SIGBUS};

// Writes that begin within a page take twice the time, so the buffer holds whole pages. A larger one no longer stays in
// the processor's cache.
constexpr std::size_t kBufferSize = 128 * 1024;

// The path of the temporary file, for a signal's handler, which may call next to nothing. No command writes two files
// at a time. The path is set before the file exists and until it is gone: to unlink no file does no harm, and hardly
// ever has another file this random name.
std::atomic<const char*> temporaryPath;
static_assert(std::atomic<const char*>::is_always_lock_free);

void RemoveTemporaryFileAndEnd(int signal) {
  if (temporaryPath != nullptr) {
    ::unlink(temporaryPath);
  }
  if (signal == SIGBUS) {
    constexpr std::string_view kMessage = "kwapayload: a file became shorter while it was read\n";
    // Nothing can be done about a failure here.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, kMessage.data(), kMessage.size());
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

OutputFile::OutputFile(std::filesystem::path targetPath, Existing existingFile)
    : target(std::move(targetPath)), existing(existingFile) {
  std::error_code error;
  const auto status = std::filesystem::status(target, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    throw ToolFailure(target, "exists and is not a file");
  }
  temporary = TemporaryPath(target);
  temporaryPath = temporary.c_str();
  // Fails where the file exists: no link that somebody placed there is followed.
  stream = std::fopen(temporary.c_str(), "wbxe");
  if (stream == nullptr) {
    temporaryPath = nullptr;
    throw ToolFailure(target, WithSystemText("cannot be created", errno));
  }
  std::setvbuf(stream, nullptr, _IOFBF, kBufferSize);
}

OutputFile::~OutputFile() {
  if (stream != nullptr) {
    std::fclose(stream);
  }
  if (!committed) {
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    temporaryPath = nullptr;
  }
}

void OutputFile::Write(std::string_view bytes) {
  // No bytes may have no address, which fwrite does not take.
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), stream) != bytes.size()) {
    throw ToolFailure(target, WithSystemText("cannot be written", errno));
  }
}

void OutputFile::Commit() {
  // A full disk may show only here.
  if (std::fclose(std::exchange(stream, nullptr)) != 0) {
    throw ToolFailure(target, WithSystemText("cannot be written", errno));
  }
  std::error_code error;
  if (existing == Existing::Kept &&
      std::filesystem::symlink_status(target, error).type() != std::filesystem::file_type::not_found) {
    throw ToolFailure(target, "cannot be created: it exists by now");
  }
  std::filesystem::rename(temporary, target, error);
  if (error) {
    throw ToolFailure(target, "cannot be created: " + error.message());
  }
  temporaryPath = nullptr;
  committed = true;
}

void RemoveTemporaryFileOnSignals() {
  for (const int signal : kEndingSignals) {
    if (std::signal(signal, RemoveTemporaryFileAndEnd) == SIG_IGN) {
      std::signal(signal, SIG_IGN);
    }
  }
}

}  // namespace kwa
