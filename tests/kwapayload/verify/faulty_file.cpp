#include "verify/faulty_file.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "trust/built_signature.h"

namespace {

// Replaces a text by another one as long.
void Replace(InstallerImage& image, std::size_t at, const std::string& old, const std::string& text) {
  ASSERT_NE(at, std::string::npos) << old;
  ASSERT_EQ(old.size(), text.size());
  image.SetText(at, text);
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

}  // namespace

FaultyFile Installer(const ImageChange& change) {
  return {[change] {
    static const InstallerImage sound;
    InstallerImage image = sound;
    change(image);
    return image.Bytes();
  }};
}

FaultyFile InHeader(std::size_t offset, const std::string& bytes) {
  return Installer([=](InstallerImage& image) { image.SetText(image.Word(0x3C) + offset, bytes); });
}

FaultyFile InProgram(const std::string& old, const std::string& text) {
  return Installer([=](InstallerImage& image) {
    // The archives come last in the file, so that a text before them is not one of a carried program.
    Replace(image, image.Bytes().rfind(old, image.A().position), old, text);
  });
}

FaultyFile InBody(const char* file, std::size_t offset, const std::string& bytes) {
  return Installer([=](InstallerImage& image) { image.SetText(image.Find(file).bodyPosition + offset, bytes); });
}

FaultyFile InInf(const std::string& old, const std::string& text) {
  return Installer([=](InstallerImage& image) {
    Replace(image, image.Bytes().find(old, image.Find("marlin_usb.inf").bodyPosition), old, text);
  });
}

FaultyFile Renamed(const char* file, const std::string& name) {
  return Installer([=](InstallerImage& image) { image.SetName(image.Find(file), name); });
}

FaultyFile InCarriedHeader(const char* file, std::size_t offset, const std::string& bytes) {
  return Installer([=](InstallerImage& image) {
    const std::size_t body = image.Find(file).bodyPosition;
    image.SetText(body + image.Word(body + 0x3C) + offset, bytes);
  });
}

FaultyFile InResources(std::uint32_t type, ResourceNumber which, std::uint32_t number) {
  return Installer([=](InstallerImage& image) {
    const std::size_t tree = image.Word(image.Bytes().find(".rsrc") + 20);
    // The first entry of the tree with that number, among those without names.
    const std::size_t entry = image.Bytes().find(WordBytes(type), tree + 16);
    const std::size_t directory = tree + (image.Word(entry + 4) & 0x7FFFFFFF);
    image.SetText(which == ResourceNumber::Type ? entry : directory + 16, WordBytes(number));
  });
}

FaultyFile WithSignature(std::uint32_t padding) {
  return Installer([=](InstallerImage& image) {
    const auto size = static_cast<std::uint32_t>(image.Bytes().size());
    image.SetText(image.Word(0x3C) + 152, WordBytes(size + padding) + WordBytes(8));
    image.Resize(size + padding + 8);
  });
}

FaultyFile Unlisted(const FaultyFile& file) {
  return {file.make, false};
}

FaultyFile Package(const Replacements& inInf, const std::function<void(PackageFiles&)>& change) {
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

std::string CatalogOf(const std::vector<std::string>& files, unsigned signerCount,
                      const std::function<std::string(const std::string&)>& timestamp) {
  std::string members;
  for (const std::string& file : files) {
    members += Der(kDerSequence, Der(kDerOctets, DigestBytes(file, "SHA256")));
  }
  return BuildSignedData({kTrustListType, TrustList(2, members), signerCount, true, timestamp});
}

FaultyFile InArchive(std::size_t offset, const std::string& bytes) {
  return {[=] {
    std::string archive = BuildArchive({{"one", "12345"}, {"two", "123"}});
    return archive.replace(std::min(offset, archive.size()), bytes.size(), bytes);
  }};
}
