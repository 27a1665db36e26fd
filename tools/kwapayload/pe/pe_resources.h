#pragma once

#include <cstdint>
#include <vector>

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

}  // namespace kwa
