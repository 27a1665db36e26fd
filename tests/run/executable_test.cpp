// The built file itself: what kind of program it is, what it asks of Windows, what it says of itself and where it
// carries the payload. Through Windows' own readers where there are any, else through a walk of the headers.

#include <windows.h>

#include <gtest/gtest.h>

#include <set>

#include "installer_image.h"
#include "old_windows_imports.h"
#include "pe_headers.h"

namespace {

const InstallerImage& Image() {
  static const InstallerImage image;
  return image;
}

const PeHeaders& Headers() {
  static const PeHeaders headers(Image().Bytes());
  return headers;
}

TEST(Executable, IsA32BitProgramWithoutAConsole) {
  DWORD kind = 0;
  EXPECT_TRUE(GetBinaryTypeA(InstallerPath(), &kind));
  EXPECT_EQ(kind, static_cast<DWORD>(SCS_32BIT_BINARY));
  EXPECT_EQ(Headers().File().Machine, IMAGE_FILE_MACHINE_I386);
  EXPECT_EQ(Headers().Optional().Magic, IMAGE_NT_OPTIONAL_HDR32_MAGIC);
  EXPECT_EQ(Headers().Optional().Subsystem, IMAGE_SUBSYSTEM_WINDOWS_GUI);
  EXPECT_EQ(Headers().File().Characteristics & (IMAGE_FILE_EXECUTABLE_IMAGE | IMAGE_FILE_DLL),
            IMAGE_FILE_EXECUTABLE_IMAGE);
}

TEST(Executable, StartsOnWindows2000) {
  EXPECT_EQ(Headers().Optional().MajorSubsystemVersion, 4);
  EXPECT_EQ(Headers().Optional().MinorSubsystemVersion, 0);
  EXPECT_EQ(Headers().Optional().MajorOperatingSystemVersion, 4);
  EXPECT_EQ(Headers().Optional().MinorOperatingSystemVersion, 0);

  std::set<std::string> known;
  for (const kwa::OldWindowsImport& import : kwa::kOldWindowsImports) {
    known.insert(std::string(import.library) + " " + import.function);
  }
  std::set<std::string> libraries;
  for (const std::string& import : Headers().Imports()) {
    EXPECT_EQ(known.count(import), 1U) << import;
    libraries.insert(import.substr(0, import.find(' ')));
  }
  EXPECT_EQ(libraries, (std::set<std::string>{"kernel32.dll", "msvcrt.dll", "shell32.dll"}));
}

TEST(Executable, ImportsNothingByOtherWays) {
  for (const int directory :
       {IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT, IMAGE_DIRECTORY_ENTRY_BOUND_IMPORT, IMAGE_DIRECTORY_ENTRY_COM_DESCRIPTOR}) {
    EXPECT_EQ(Headers().Optional().DataDirectory[directory].VirtualAddress, 0U) << directory;
  }
}

TEST(Executable, IsHardened) {
  const WORD wanted = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
                      IMAGE_DLLCHARACTERISTICS_TERMINAL_SERVER_AWARE;
  EXPECT_EQ(Headers().Optional().DllCharacteristics & wanted, wanted);
  // Windows cannot move a program without these.
  EXPECT_EQ(Headers().File().Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
  EXPECT_GT(Headers().Optional().DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
  for (const IMAGE_SECTION_HEADER& section : Headers().Sections()) {
    const DWORD both = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
    EXPECT_NE(section.Characteristics & both, both) << std::string(reinterpret_cast<const char*>(section.Name), 8);
  }
}

TEST(Executable, AsksForAdministratorRights) {
  const HMODULE module = LoadLibraryExA(InstallerPath(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(module, nullptr);
  const HRSRC found = FindResourceA(module, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(24));
  ASSERT_NE(found, nullptr);
  const std::string manifest(static_cast<const char*>(LockResource(LoadResource(module, found))),
                             SizeofResource(module, found));
  EXPECT_NE(manifest.find("<requestedExecutionLevel level=\"requireAdministrator\" uiAccess=\"false\"/>"),
            std::string::npos)
      << manifest;
  FreeLibrary(module);
}

TEST(Executable, SaysThatItIsVersion1) {
  DWORD ignored = 0;
  std::string record(GetFileVersionInfoSizeA(InstallerPath(), &ignored), '\0');
  ASSERT_TRUE(GetFileVersionInfoA(InstallerPath(), 0, static_cast<DWORD>(record.size()), record.data()));
  void* value = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueA(record.data(), "\\", &value, &size));
  const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(value);
  EXPECT_EQ(fixed.dwFileVersionMS, MAKELONG(0, 1));
  EXPECT_EQ(fixed.dwFileVersionLS, 0U);
  EXPECT_EQ(fixed.dwProductVersionMS, MAKELONG(0, 1));
  EXPECT_EQ(fixed.dwProductVersionLS, 0U);
  for (const char* name : {"FileVersion", "ProductVersion"}) {
    ASSERT_TRUE(
        VerQueryValueA(record.data(), (std::string("\\StringFileInfo\\040904B0\\") + name).c_str(), &value, &size));
    EXPECT_STREQ(static_cast<const char*>(value), "1.0") << name;
  }
}

// Every byte of the payload and every byte between: the reader relies on whole words, ended names and zero padding.
TEST(Executable, CarriesThePayloadInReadOnlyData) {
  const std::string& bytes = Image().Bytes();
  const struct {
    const EmbeddedArchive& archive;
    char folder;
    std::vector<std::string> names;  // in the order of extraction
  } cases[] = {{Image().A(),
                'a',
                {"marlinusb.exe", "marlin_usb.cat", "marlin_usb.inf", "marlin_usb.sys", "marlin_usb_64.sys",
                 "marlin_usb_asio.dll", "marlin_usb_asio_64.dll", "Panorama.chm", "Panorama.exe"}},
               {Image().B(), 'b', {"dpinst.exe", "dpinst64.exe", "eula_de.txt", "eula_en.txt", "kwa.bmp"}}};
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.folder);
    const EmbeddedArchive& archive = expected.archive;
    const IMAGE_SECTION_HEADER* const section = Headers().SectionAt(archive.position);
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(Headers().SectionAt(archive.end + 3), section);
    EXPECT_EQ(section->Characteristics & (IMAGE_SCN_CNT_CODE | IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE), 0U);
    EXPECT_NE(section->Characteristics & IMAGE_SCN_MEM_READ, 0U);
    EXPECT_EQ((archive.position - section->PointerToRawData + section->VirtualAddress) % 4, 0U);

    std::vector<std::string> names;
    const std::vector<PayloadFile> payload = PayloadOf(archive, expected.folder);
    for (std::size_t i = 0; i < archive.files.size(); ++i) {
      const EmbeddedFile& file = archive.files[i];
      SCOPED_TRACE(file.name);
      names.push_back(file.name);
      EXPECT_EQ(bytes.substr(file.entryPosition + file.name.size(), 260 - file.name.size()),
                std::string(260 - file.name.size(), '\0'));
      EXPECT_EQ(file.size, payload[i].contents.size());
      EXPECT_TRUE(bytes.compare(file.bodyPosition, file.size, payload[i].contents) == 0);
      const std::size_t next = i + 1 < archive.files.size() ? archive.files[i + 1].bodyPosition : archive.end;
      EXPECT_EQ(bytes.substr(file.bodyPosition + file.size, next - file.bodyPosition - file.size),
                std::string((4 - file.size % 4) % 4, '\0'));
    }
    EXPECT_EQ(names, expected.names);
    EXPECT_EQ(Image().Word(archive.end), 0U);
  }
}

}  // namespace
