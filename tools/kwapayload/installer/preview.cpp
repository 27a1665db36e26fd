#include "installer/preview.h"

#include <cerrno>
#include <cstdio>
#include <memory>

#include "files/tool_failure.h"
#include "dpinst/dpinst_document.h"

namespace kwa {

std::string PreviewDpinstConfig(const PackageIdentity& identity, bool legacyMode) {
  // Binary, on every machine.
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
  if (file == nullptr) {
    throw ToolFailure("temporary file", WithSystemText("cannot be created", errno));
  }
  WriteDpinstDocument(file.get(), identity.version.c_str(), identity.displayName.c_str(), legacyMode);
  if (std::fflush(file.get()) != 0 || std::ferror(file.get()) != 0) {
    throw ToolFailure("temporary file", WithSystemText("cannot be written", errno));
  }
  std::rewind(file.get());
  std::string document;
  for (int c = std::fgetc(file.get()); c != EOF; c = std::fgetc(file.get())) {
    // What the text mode of the installer's stream does.
    if (c == '\n') {
      document += '\r';
    }
    document += static_cast<char>(c);
  }
  return document;
}

}  // namespace kwa
