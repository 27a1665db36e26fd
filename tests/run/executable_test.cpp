// The built file itself: what kind of program it is, what it asks of Windows and what it says of itself. Through
// Windows' own readers where there are any, else through those of the tool that checks installers.

#include <windows.h>

#include <gtest/gtest.h>

#include <set>

#include "installer_image.h"
#include "pe/pe_image.h"
#include "pe/pe_imports.h"
#include "verify/old_windows_imports.h"

namespace {

const kwa::PeImage& Image() {
  static const InstallerImage file;
  static const kwa::PeImage image = [] {
    kwa::PeImage read = {};
    std::string fault;
    EXPECT_TRUE(kwa::ReadPeImage(kwa::ByteSpan(file.Bytes()), &read, &fault)) << fault;
    return read;
  }();
  return image;
}

TEST(Executable, IsA32BitProgramWithoutAConsole) {
  DWORD kind = 0;
  EXPECT_TRUE(GetBinaryTypeA(InstallerPath(), &kind));
  EXPECT_EQ(kind, static_cast<DWORD>(SCS_32BIT_BINARY));
  EXPECT_EQ(Image().machine, IMAGE_FILE_MACHINE_I386);
  EXPECT_FALSE(Image().isPlus);
  EXPECT_EQ(Image().subsystem, IMAGE_SUBSYSTEM_WINDOWS_GUI);
  EXPECT_EQ(Image().characteristics & (IMAGE_FILE_EXECUTABLE_IMAGE | IMAGE_FILE_DLL), IMAGE_FILE_EXECUTABLE_IMAGE);
}

TEST(Executable, StartsOnWindows2000) {
  EXPECT_EQ(Image().majorSubsystemVersion, 4);
  EXPECT_EQ(Image().minorSubsystemVersion, 0);
  EXPECT_EQ(Image().majorOperatingSystemVersion, 4);
  EXPECT_EQ(Image().minorOperatingSystemVersion, 0);

  std::set<std::string> known;
  for (const kwa::OldWindowsImport& import : kwa::kOldWindowsImports) {
    known.insert(std::string(import.library) + " " + import.function);
  }
  const kwa::ImportTable imports = kwa::ReadImports(Image());
  EXPECT_TRUE(imports.isComplete);
  std::set<std::string> libraries;
  for (const kwa::ImportedLibrary& library : imports.libraries) {
    std::string name = library.name;
    CharLowerA(name.data());
    libraries.insert(name);
    EXPECT_FALSE(library.isDelayed) << name;
    for (const std::string& function : library.functions) {
      EXPECT_EQ(known.count(name + " " + function), 1U) << name << " " << function;
    }
  }
  EXPECT_EQ(libraries, (std::set<std::string>{"kernel32.dll", "msvcrt.dll", "shell32.dll"}));
}

TEST(Executable, IsHardened) {
  const WORD wanted = IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
                      IMAGE_DLLCHARACTERISTICS_TERMINAL_SERVER_AWARE;
  EXPECT_EQ(Image().dllCharacteristics & wanted, wanted);
  // Windows cannot move a program without these.
  EXPECT_TRUE(Image().HasBaseRelocations());
  for (const kwa::PeSection& section : Image().sections) {
    const DWORD both = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
    EXPECT_NE(section.characteristics & both, both) << section.name;
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

}  // namespace
