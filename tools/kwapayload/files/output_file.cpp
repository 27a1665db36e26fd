#include "files/output_file.h"

#include <unistd.h>

#include <algorithm>
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

// The paths of the temporary files, for a signal's handler, which may call next to nothing. No command writes more than
// two files at a time; a fifth would not be removed.
std::array<std::atomic<const char*>, 4> temporaryPaths;
static_assert(std::atomic<const char*>::is_always_lock_free);

void ReplaceTemporaryPath(const char* old, const char* path) {
  const auto place = std::find(temporaryPaths.begin(), temporaryPaths.end(), old);
  if (place != temporaryPaths.end()) {
    *place = path;
  }
}

void RemoveTemporaryFilesAndEnd(int signal) {
  for (const std::atomic<const char*>& path : temporaryPaths) {
    if (path != nullptr) {
      ::unlink(path);
    }
  }
  if (signal == SIGBUS) {
    constexpr std::string_view kMessage = "kwapayload: a file became shorter while it was read\n";
    // Nothing can be done about a failure here.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, kMessage.data(), kMessage.size());
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

// Blocks the signals while the files and the paths above do not agree.
class SignalPause {
 public:
  SignalPause() {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : kEndingSignals) {
      sigaddset(&ending, signal);
    }
    ::sigprocmask(SIG_BLOCK, &ending, &before);
  }
  SignalPause(const SignalPause&) = delete;
  SignalPause& operator=(const SignalPause&) = delete;
  ~SignalPause() { ::sigprocmask(SIG_SETMASK, &before, nullptr); }

 private:
  sigset_t before = {};
};

}  // namespace

OutputFile::OutputFile(std::filesystem::path targetPath, Existing existingFile)
    : target(std::move(targetPath)), existing(existingFile) {
  std::error_code error;
  const auto status = std::filesystem::status(target, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    throw ToolFailure(target, "exists and is not a file");
  }
  const SignalPause pause;
  do {
    temporary = TemporaryPath(target);
    // Fails with EEXIST where the file exists: no link that somebody placed there is followed.
    stream = std::fopen(temporary.c_str(), "wbxe");
  } while (stream == nullptr && errno == EEXIST);
  if (stream == nullptr) {
    throw ToolFailure(target, WithSystemText("cannot be created", errno));
  }
  ReplaceTemporaryPath(nullptr, temporary.c_str());
  std::setvbuf(stream, nullptr, _IOFBF, kBufferSize);
}

OutputFile::~OutputFile() {
  if (stream != nullptr) {
    std::fclose(stream);
  }
  if (!committed) {
    const SignalPause pause;
    std::error_code ignored;
    std::filesystem::remove(temporary, ignored);
    ReplaceTemporaryPath(temporary.c_str(), nullptr);
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
  const SignalPause pause;
  if (existing == Existing::Kept) {
    // Takes the name, or fails because a file has it. Every file system can do this.
    std::FILE* const place = std::fopen(target.c_str(), "wbxe");
    if (place == nullptr) {
      throw ToolFailure(target, WithSystemText("cannot be created", errno));
    }
    std::fclose(place);
  }
  std::error_code error;
  std::filesystem::rename(temporary, target, error);
  if (error) {
    if (existing == Existing::Kept) {
      std::error_code ignored;
      std::filesystem::remove(target, ignored);
    }
    throw ToolFailure(target, "cannot be created: " + error.message());
  }
  ReplaceTemporaryPath(temporary.c_str(), nullptr);
  committed = true;
}

void RemoveTemporaryFilesOnSignals() {
  for (const int signal : kEndingSignals) {
    if (std::signal(signal, RemoveTemporaryFilesAndEnd) == SIG_IGN) {
      std::signal(signal, SIG_IGN);
    }
  }
}

}  // namespace kwa
