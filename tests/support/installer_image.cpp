#include "installer_image.h"

#include <gtest/gtest.h>

#include "temporary_folder.h"

namespace {

constexpr std::size_t kEntrySize = 264;
constexpr std::size_t kNameSize = 260;

EmbeddedArchive ReadArchive(const InstallerImage& image, std::size_t position) {
  EmbeddedArchive archive = {position, {}};
  const std::uint32_t count = image.Word(position + 4);
  std::size_t body = position + 8 + kEntrySize * count;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t entry = position + 8 + kEntrySize * i;
    const std::uint32_t size = image.Word(entry + kNameSize);
    archive.files.push_back({entry, body, image.Bytes().c_str() + entry, size});
    body += (size + 3) / 4 * 4;
  }
  return archive;
}

}  // namespace

InstallerImage::InstallerImage() : bytes(ReadWholeFile(KWA_INSTALLER)) {
  // Only an entry has its name followed by zeros to the end of the field.
  for (std::string first : {"marlinusb.exe", "dpinst.exe"}) {
    first.resize(kNameSize);
    archives.push_back(ReadArchive(*this, bytes.find(first) - 8));
  }
}

const EmbeddedFile& InstallerImage::Find(const std::string& name) const {
  for (const EmbeddedArchive& archive : archives) {
    for (const EmbeddedFile& file : archive.files) {
      if (file.name == name) {
        return file;
      }
    }
  }
  ADD_FAILURE() << "no file " << name;
  return archives[0].files[0];
}

std::uint32_t InstallerImage::Word(std::size_t position) const {
  std::uint32_t word = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    word |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes.at(position + i))) << (8 * i);
  }
  return word;
}

void InstallerImage::SetName(const EmbeddedFile& file, std::string name) {
  name.resize(kNameSize);
  SetText(file.entryPosition, name);
}

void InstallerImage::SetBody(const EmbeddedFile& file, std::string body) {
  EXPECT_LE(body.size(), file.size) << "too large for " << file.name;
  body.resize(file.size);
  SetText(file.bodyPosition, body);
}
