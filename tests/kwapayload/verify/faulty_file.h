#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "installer_image.h"
#include "trust/built_signature.h"

// Files for verify that have one fault each: the built installer, a small driver package in an archive, or an archive.

struct FaultyFile {
  std::function<std::string()> make;  // its bytes
  bool isListed = true;               // whether it is compared with the list of contents, if it is an installer
};

inline FaultyFile Installer(const std::function<void(InstallerImage&)>& change) {
  return {[change] {
    static const InstallerImage sound;
    InstallerImage image = sound;
    change(image);
    return image.Bytes();
  }};
}

// The offset counts from the "PE" signature of the installer, or of a program of the payload.
inline FaultyFile InHeader(std::size_t offset, const std::string& bytes, const char* carried = nullptr) {
  return Installer([=](InstallerImage& image) {
    const std::size_t program = carried == nullptr ? 0 : image.Find(carried).bodyPosition;
    image.SetText(program + image.Word(program + 0x3C) + offset, bytes);
  });
}

// In the last place of a text before the archives, which come last in the file.
inline FaultyFile InProgram(const std::string& old, const std::string& text) {
  return Installer([=](InstallerImage& image) { image.SetText(image.Bytes().rfind(old, image.A()), text); });
}

inline FaultyFile InBody(const char* file, std::size_t offset, const std::string& bytes) {
  return Installer([=](InstallerImage& image) { image.SetText(image.Find(file).bodyPosition + offset, bytes); });
}

// In the first place of a text in the INF.
inline FaultyFile InInf(const std::string& old, const std::string& text) {
  return Installer([=](InstallerImage& image) {
    image.SetText(image.Bytes().find(old, image.Find("marlin_usb.inf").bodyPosition), text);
  });
}

inline FaultyFile Renamed(const char* file, const std::string& name) {
  return Installer([=](InstallerImage& image) { image.SetName(image.Find(file), name); });
}

// The resources of a type get another number for the type, or the first of them for its name.
enum class ResourceNumber { Type, Name };
inline FaultyFile InResources(std::uint32_t type, ResourceNumber which, std::uint32_t number) {
  return Installer([=](InstallerImage& image) {
    const std::size_t tree = image.Word(image.Bytes().find(".rsrc") + 20);
    // The first entry of the tree with that number, among those without names.
    const std::size_t entry = image.Bytes().find(WordBytes(type), tree + 16);
    const std::size_t directory = tree + (image.Word(entry + 4) & 0x7FFFFFFF);
    image.SetText(which == ResourceNumber::Type ? entry : directory + 16, WordBytes(number));
  });
}

// A signature of 8 bytes after some padding.
inline FaultyFile WithSignature(std::size_t padding) {
  return Installer([=](InstallerImage& image) {
    const std::size_t size = image.Bytes().size();
    image.SetText(image.Word(0x3C) + 152, WordBytes(size + padding) + WordBytes(8));
    image.Resize(size + padding + 8);
  });
}

inline FaultyFile Unlisted(const FaultyFile& file) {
  return {file.make, false};
}

const char kPackageInf[] = R"([Version]
Signature="$Windows NT$"
DriverVer=01/02/2020,1.0
DriverPackageDisplayName="Marlin USB"
CatalogFile=a.cat
[SourceDisksNames]
1=Disk
[SourceDisksFiles]
a.sys=1
[Manufacturer]
KWA=Models,NTx86,NTamd64
[Models.NTx86]
Device=Install,ID
[Models.NTamd64]
Device=Install,ID
[Install]
CopyFiles=Files
[Files]
a.sys
)";

// A package of a.inf, a.sys and a.cat. Texts in the INF are replaced before the catalog is made, the files change after
// that.
using Replacements = std::vector<std::pair<std::string, std::string>>;
using PackageFiles = std::map<std::string, std::string>;
inline FaultyFile Package(const Replacements& inInf, const std::function<void(PackageFiles&)>& change = nullptr) {
  return {[=] {
    std::string inf = kPackageInf;
    for (const auto& [old, text] : inInf) {
      inf.replace(inf.find(old), old.size(), text);
    }
    PackageFiles files = {{"a.inf", inf}, {"a.sys", "driver"}, {"a.cat", CatalogOf({inf, "driver"})}};
    if (change) {
      change(files);
    }
    std::vector<ArchiveBody> bodies;
    for (const auto& [name, bytes] : files) {
      bodies.push_back({name, bytes});
    }
    return BuildArchive(bodies);
  }};
}

// An archive of the files "one" of 5 bytes and "two" of 3, with bytes of it replaced.
inline FaultyFile InArchive(std::size_t offset, const std::string& bytes) {
  return {[=] { return Replaced(BuildArchive({{"one", "12345"}, {"two", "123"}}), offset, bytes); }};
}
