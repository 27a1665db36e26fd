#pragma once

#include <cstdint>
#include <vector>

#include "pe/pe_image.h"

namespace kwa {

constexpr std::uint32_t kResourceTypeVersion = 16;
constexpr std::uint32_t kResourceTypeManifest = 24;

// One resource with numbers for type and name; those with texts are left out.
struct PeResource {
  std::uint32_t type;
  std::uint32_t name;
  std::uint32_t language;
  ByteSpan bytes;
};

// The resources of an image, at most 4096 of them.
std::vector<PeResource> ReadResources(const PeImage& image);

// The bytes of the first resource of a type, or an empty span.
ByteSpan FirstResource(const std::vector<PeResource>& resources, std::uint32_t type);

}  // namespace kwa
