#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "installer_image.h"

// Files for verify that have one fault each: the built installer, a small driver package in an archive, or an archive.

struct FaultyFile {
  std::function<std::string()> make;  // its bytes
  bool isListed = true;               // whether it is compared with the list of contents, if it is an installer
};

using ImageChange = std::function<void(InstallerImage&)>;
FaultyFile Installer(const ImageChange& change);
// Offsets count from the program's "PE" signature.
FaultyFile InHeader(std::size_t offset, const std::string& bytes);
// The last place of a text before the archives.
FaultyFile InProgram(const std::string& old, const std::string& text);
FaultyFile InBody(const char* file, std::size_t offset, const std::string& bytes);
// The first place of a text in the INF.
FaultyFile InInf(const std::string& old, const std::string& text);
FaultyFile Renamed(const char* file, const std::string& name);
// The same as InHeader, in a program of the payload.
FaultyFile InCarriedHeader(const char* file, std::size_t offset, const std::string& bytes);
// The resources of a type get another number for the type, or the first of them for its name.
enum class ResourceNumber { Type, Name };
FaultyFile InResources(std::uint32_t type, ResourceNumber which, std::uint32_t number);
// A signature of 8 bytes after some padding.
FaultyFile WithSignature(std::uint32_t padding);
FaultyFile Unlisted(const FaultyFile& file);

// A package of a.inf, a.sys and a.cat. Texts in the INF are replaced before the catalog is made, the files change after
// that.
using Replacements = std::vector<std::pair<std::string, std::string>>;
using PackageFiles = std::map<std::string, std::string>;
FaultyFile Package(const Replacements& inInf, const std::function<void(PackageFiles&)>& change = nullptr);
// A signed catalog of these files. `timestamp` makes an attribute from the signature.
std::string CatalogOf(const std::vector<std::string>& files, unsigned signerCount = 1,
                      const std::function<std::string(const std::string&)>& timestamp = nullptr);

// An archive of the files "one" of 5 bytes and "two" of 3, with bytes of it replaced.
FaultyFile InArchive(std::size_t offset, const std::string& bytes);
