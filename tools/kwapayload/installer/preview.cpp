#include "installer/preview.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include "dpinst/device_families.h"
#include "dpinst/dpinst_document.h"
#include "pe/pe_resources.h"
#include "trust/digest.h"

namespace kwa {

std::string PreviewDpinstConfig(const PackageIdentity& identity, bool legacyMode) {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* const stream = ::open_memstream(&text, &size);
  if (stream == nullptr) {
    throw std::bad_alloc();
  }
  WriteDpinstDocument(stream, identity.version.text.c_str(), identity.displayName.text.c_str(), legacyMode);
  const bool isWhole = std::fclose(stream) == 0;  // gives `text` its final value
  const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
  if (!isWhole) {
    throw std::bad_alloc();
  }
  std::string document;
  for (std::size_t i = 0; i < size; ++i) {
    // As the text mode of the installer's stream does.
    document += text[i] == '\n' ? "\r\n" : std::string(1, text[i]);
  }
  return document;
}

std::string KnownConfiguration() {
  Digest digest("SHA256");
  const auto add = [&digest](const std::string& displayName) {
    const PackageIdentity identity = {{"01/02/2003,1.2.3.4", false}, {displayName, false}, {}};
    for (const bool legacyMode : {false, true}) {
      digest.Add(ByteSpan(PreviewDpinstConfig(identity, legacyMode)));
    }
  };
  add("");
  for (unsigned i = 0; i < kDeviceFamilyCount; ++i) {
    add(kDeviceFamilies[i].key);
  }
  return Hex(digest.Bytes());
}

bool HasKnownTexts(const InstallerFile& installer) {
  const std::optional<VersionRecord> version = FileVersionRecord(installer.bytes);
  return !installer.image || (version && version->Text("Configuration") == KnownConfiguration());
}

}  // namespace kwa
