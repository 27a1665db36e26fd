#include "installer/preview.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>

#include "dpinst/dpinst_document.h"

namespace kwa {
namespace {

// What `write` writes to a stream.
template <typename Write>
std::string WrittenText(Write write) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* const stream = ::open_memstream(&text, &size);
  if (stream == nullptr) {
    throw std::bad_alloc();
  }
  write(stream);
  const bool isWhole = std::fclose(stream) == 0;  // gives `text` its final value
  const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
  if (!isWhole) {
    throw std::bad_alloc();
  }
  return {text, size};
}

}  // namespace

std::string PreviewDpinstConfig(const PackageIdentity& identity, bool legacyMode) {
  const std::string written = WrittenText([&](std::FILE* stream) {
    WriteDpinstDocument(stream, identity.version.text.c_str(), identity.displayName.text.c_str(), legacyMode);
  });
  std::string document;
  for (const char c : written) {
    // As the text mode of the installer's stream does.
    document += c == '\n' ? std::string_view("\r\n") : std::string_view(&c, 1);
  }
  return document;
}

}  // namespace kwa
