#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "pe/pe_image.h"

namespace kwa {

constexpr std::uint32_t kResourceTypeVersion = 16;
constexpr std::uint32_t kResourceTypeManifest = 24;

// One resource with a number for type, name and language; those with texts are left out.
struct PeResource {
  std::uint32_t type;
  std::uint32_t name;
  ByteSpan bytes;
};

// The resources of an image, at most 4096 of them.
std::vector<PeResource> ReadResources(const PeImage& image);

// The bytes of the first resource of a type, or an empty span.
ByteSpan FirstResource(const std::vector<PeResource>& resources, std::uint32_t type);

// The version record that Explorer shows.
struct VersionRecord {
  std::string fileVersion;     // "1.0.0.0", from the fixed part
  std::string productVersion;  // likewise
  // Texts of the first language, by key: "FileDescription", … Characters beyond ASCII in UTF-8.
  std::map<std::string, std::string> texts;

  // The text for a key, "" where there is none.
  std::string Text(const std::string& key) const;
};

// Reads a version resource. Nothing where the bytes are none.
std::optional<VersionRecord> ReadVersionRecord(ByteSpan resource);

// The version record of a whole file. Nothing where it is no Windows program, library or driver, or has none.
std::optional<VersionRecord> FileVersionRecord(ByteSpan file);

}  // namespace kwa
