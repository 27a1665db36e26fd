#include <algorithm>
#include <iterator>
#include <string>

#include "base/ascii_text.h"
#include "pe/pe_imports.h"
#include "pe/pe_resources.h"
#include "pe/version_record.h"
#include "verify/installer_manifest.h"
#include "verify/old_windows_imports.h"
#include "verify/verification.h"

namespace kwa {
namespace {

constexpr std::uint16_t kImageFileExecutable = 0x0002;
constexpr std::uint16_t kImageDllCharacteristicsTerminalServerAware = 0x8000;

// The version of Windows 2000; a program that asks for a later one does not start there.
constexpr std::uint16_t kOldestWindows = 5;

void VerifyHeaders(const PeImage& image, Findings* findings) {
  const auto add = [&](const char* what, const char* code, Severity severity = Severity::Error) {
    findings->Add({severity, "executable", what, code});
  };
  if (image.isPlus || image.machine != kImageFileMachineI386) {
    add("is not a 32-bit x86 program (PE32)", "machine");
  }
  if ((image.characteristics & kImageFileExecutable) == 0 || (image.characteristics & kImageFileDll) != 0) {
    add("is not marked as a program", "not-a-program");
  }
  if (image.subsystem != kImageSubsystemWindowsGui) {
    add("is not of the GUI subsystem: Windows would open a console", "subsystem");
  }
  if (image.majorSubsystemVersion > kOldestWindows || image.majorOperatingSystemVersion > kOldestWindows ||
      (image.majorSubsystemVersion == kOldestWindows && image.minorSubsystemVersion > 0)) {
    add("asks for a Windows later than 2000", "windows-version");
  }
  if ((image.dllCharacteristics & kImageDllCharacteristicsDynamicBase) == 0) {
    add("is not marked for address space randomization (ASLR)", "no-aslr");
  } else if (!image.HasBaseRelocations()) {
    add("has no relocations, so address space randomization (ASLR) has no effect", "no-relocations");
  }
  if ((image.dllCharacteristics & kImageDllCharacteristicsNxCompat) == 0) {
    add("is not marked for data execution prevention (DEP)", "no-dep");
  }
  if ((image.dllCharacteristics & kImageDllCharacteristicsTerminalServerAware) == 0) {
    add("is not marked as aware of terminal servers", "not-terminal-server-aware", Severity::Warning);
  }
  for (const PeSection& section : image.sections) {
    if ((section.characteristics & kImageScnMemExecute) != 0 && (section.characteristics & kImageScnMemWrite) != 0) {
      findings->AddError("executable, section " + section.name, "can be written and executed", "writable-code");
    }
  }
}

bool IsListed(const OldWindowsLibrary& library, const std::string& function) {
  return function.find(' ') == std::string::npos &&
         library.functions.find(" " + function + " ") != std::string_view::npos;
}

const OldWindowsLibrary* FindOldLibrary(const std::string& name) {
  const auto* const found =
      std::find_if(std::begin(kOldWindowsLibraries), std::end(kOldWindowsLibraries),
                   [&name](const OldWindowsLibrary& library) { return IsSameText(library.name, name); });
  return found == std::end(kOldWindowsLibraries) ? nullptr : found;
}

void VerifyImports(const PeImage& image, Findings* findings) {
  const ImportTable imports = ReadImports(image);
  if (!imports.isComplete) {
    findings->AddError("executable", "its import table is damaged", "imports-damaged");
  }
  for (const ImportedLibrary& imported : imports.libraries) {
    const OldWindowsLibrary* const library = FindOldLibrary(imported.name);
    const std::string where = "executable, imports of " + imported.name;
    if (library == nullptr) {
      findings->AddError(where, "only KERNEL32, SHELL32 and msvcrt may be imported", "library-not-allowed");
      continue;
    }
    for (const std::string& function : imported.functions) {
      if (!IsListed(*library, function)) {
        findings->AddError(where, function + " is not known to be in Windows 2000 and XP", "import-too-new");
      }
    }
  }
}

void VerifyManifest(const std::vector<PeResource>& resources, Findings* findings) {
  constexpr std::uint32_t kProcessManifest = 1;  // CREATEPROCESS_MANIFEST_RESOURCE_ID
  std::size_t count = 0;
  bool isExpected = true;
  for (const PeResource& resource : resources) {
    if (resource.type == kResourceTypeManifest) {
      ++count;
      isExpected = isExpected && resource.name == kProcessManifest && resource.bytes.Text() == kInstallerManifest;
    }
  }
  if (count == 0) {
    findings->AddError("executable", "has no manifest", "no-manifest");
  } else if (count > 1 || !isExpected) {
    findings->AddError("executable, manifest",
                       "is not the one manifest with the number 1 that asks for administrator rights, byte for byte as "
                       "this tool knows it",
                       "manifest");
  }
}

// Whether a text gives the version: all four parts, or without zeros at the end.
bool MeansVersion(std::string text, const std::string& number) {
  while (!text.empty() && text.size() < number.size()) {
    text += ".0";
  }
  return text == number;
}

void VerifyResources(const PeImage& image, Findings* findings) {
  const std::vector<PeResource> resources = ReadResources(image);
  VerifyManifest(resources, findings);
  const ByteSpan version = FirstResource(resources, kResourceTypeVersion);
  const std::optional<VersionRecord> record = ReadVersionRecord(version);
  if (version.Empty()) {
    findings->AddError("executable", "has no version record", "no-version");
  } else if (!record) {
    findings->AddError("executable", "its version record is damaged", "version-damaged");
  } else if (record->fileVersion != record->productVersion ||
             !MeansVersion(record->Text("FileVersion"), record->fileVersion)) {
    findings->AddError("executable, version record",
                       "its versions differ: file " + record->fileVersion + " (\"" + record->Text("FileVersion") +
                           "\"), product " + record->productVersion,
                       "versions-differ");
  }
}

// After the last section, there is nothing but a signature.
void VerifyEnd(const PeImage& image, Findings* findings) {
  std::uint64_t end = image.headerOffset;
  for (const PeSection& section : image.sections) {
    end = std::max(end, std::uint64_t{section.fileOffset} + section.bytes.Size());
  }
  const std::uint64_t size = image.file.Size();
  std::uint64_t rest = size - std::min(end, size);
  const PeDirectory signature = image.Directory(kPeSecurityDirectory);
  if (signature.address != 0 || signature.size != 0) {
    if (signature.address < end || signature.address % 8 != 0 ||
        signature.address + std::uint64_t{signature.size} != size) {
      findings->AddError("executable", "its security directory does not point to a signature at the end of the file",
                         "signature-place");
      return;
    }
    // A signature begins on a multiple of 8.
    rest = (signature.address - end) / 8 * 8;
  }
  if (rest != 0) {
    findings->AddWarning("executable", std::to_string(rest) + " bytes after the last section are no signature",
                         "overlay");
  }
}

}  // namespace

void VerifyExecutable(const PeImage& image, Findings* findings) {
  const std::vector<PeSection>& sections = image.sections;
  if (std::any_of(sections.begin(), sections.end(), [](const PeSection& section) { return section.IsTruncated(); })) {
    return;  // a finding of the layout, and missing bytes cannot be judged
  }
  VerifyHeaders(image, findings);
  VerifyImageLayout(image, findings);
  VerifyImports(image, findings);
  VerifyResources(image, findings);
  VerifyEnd(image, findings);
}

}  // namespace kwa
