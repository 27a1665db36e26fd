#pragma once

#include <string>

namespace kwa {

// The platforms that the installer runs on.
enum class InfPlatform { X86, Amd64 };

constexpr InfPlatform kInfPlatforms[] = {InfPlatform::X86, InfPlatform::Amd64};

// The name of a platform as INFs spell it: "x86" or "amd64".
inline std::string PlatformName(InfPlatform platform) {
  return platform == InfPlatform::X86 ? "x86" : "amd64";
}

}  // namespace kwa
