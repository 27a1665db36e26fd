#include <algorithm>
#include <functional>
#include <string>

#include "base/ascii_text.h"
#include "pe/pe_imports.h"
#include "pe/pe_resources.h"
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
  const bool isRelocatable = (image.dllCharacteristics & kImageDllCharacteristicsDynamicBase) != 0;
  const struct {
    bool isFault;
    const char* what;
    const char* code;
    Severity severity = Severity::Error;
  } checks[] = {
      {image.isPlus || image.machine != kImageFileMachineI386, "is not a 32-bit x86 program (PE32)", "machine"},
      {(image.characteristics & kImageFileExecutable) == 0 || (image.characteristics & kImageFileDll) != 0,
       "is not marked as a program", "not-a-program"},
      {image.subsystem != kImageSubsystemWindowsGui, "is not of the GUI subsystem: Windows would open a console",
       "subsystem"},
      {image.majorSubsystemVersion > kOldestWindows || image.majorOperatingSystemVersion > kOldestWindows ||
           (image.majorSubsystemVersion == kOldestWindows && image.minorSubsystemVersion > 0),
       "asks for a Windows later than 2000", "windows-version"},
      {!isRelocatable, "is not marked for address space randomization (ASLR)", "no-aslr"},
      {isRelocatable && !image.HasBaseRelocations(),
       "has no relocations, so address space randomization (ASLR) has no effect", "no-relocations"},
      {(image.dllCharacteristics & kImageDllCharacteristicsNxCompat) == 0,
       "is not marked for data execution prevention (DEP)", "no-dep"},
      {(image.dllCharacteristics & kImageDllCharacteristicsTerminalServerAware) == 0,
       "is not marked as aware of terminal servers", "not-terminal-server-aware", Severity::Warning},
  };
  for (const auto& check : checks) {
    if (check.isFault) {
      findings->Add({check.severity, "executable", check.what, check.code});
    }
  }
  for (const PeSection& section : image.sections) {
    if ((section.characteristics & kImageScnMemExecute) != 0 && (section.characteristics & kImageScnMemWrite) != 0) {
      findings->AddError("executable, section " + section.name, "can be written and executed", "writable-code");
    }
  }
}

bool IsPowerOfTwo(std::uint64_t number) {
  return number != 0 && (number & (number - 1)) == 0;
}

std::uint64_t AlignedTo(std::uint64_t alignment, std::uint64_t offset) {
  return (offset + alignment - 1) / alignment * alignment;
}

// What the loader of Windows refuses. Microsoft, "PE Format", the fields of the optional header; that the sections
// follow each other in memory without a gap is seen with all loaders of Windows, and every linker makes it so.
void VerifyImageLayout(const PeImage& image, Findings* findings) {
  const auto add = [&](const std::string& what, const char* code) { findings->AddError("executable", what, code); };
  if (!IsPowerOfTwo(image.fileAlignment) || image.fileAlignment < 0x200 || image.fileAlignment > 0x10000 ||
      !IsPowerOfTwo(image.sectionAlignment) ||
      image.sectionAlignment < std::max<std::uint32_t>(image.fileAlignment, 0x1000)) {
    add("its alignments (sections " + std::to_string(image.sectionAlignment) + ", file " +
            std::to_string(image.fileAlignment) + ") are not powers of two that Windows loads",
        "alignment");
    return;  // nothing else can be judged without them
  }
  if (image.imageBase % 0x10000 != 0) {
    add("its image base is not a multiple of 65536", "image-base");
  }
  std::uint64_t next = AlignedTo(image.sectionAlignment, image.headersSize);
  std::uint64_t fileEnd = image.headersSize;
  bool isEntryExecutable = false;
  for (const PeSection& section : image.sections) {
    const std::uint64_t size = section.virtualSize != 0 ? section.virtualSize : section.fileSize;
    if (section.virtualAddress != next || size == 0) {
      add("its section " + section.name + " does not begin where the one before it ends in memory", "section-place");
      return;  // nor do those after it
    }
    const bool isInFile = section.fileSize != 0;
    if (isInFile && (section.fileOffset % image.fileAlignment != 0 || section.fileOffset < fileEnd)) {
      add("its section " + section.name + " is not aligned in the file, or overlaps another part", "section-place");
    }
    fileEnd = isInFile ? section.fileOffset + std::uint64_t{section.fileSize} : fileEnd;
    isEntryExecutable = isEntryExecutable || ((section.characteristics & kImageScnMemExecute) != 0 &&
                                              image.entryPoint >= next && image.entryPoint - next < size);
    next = AlignedTo(image.sectionAlignment, next + size);
  }
  if (image.imageSize < next) {
    add("its size in memory (" + std::to_string(image.imageSize) + ") is less than the " + std::to_string(next) +
            " bytes of its sections",
        "image-size");
  }
  if (!isEntryExecutable) {
    add("its entry point is not in an executable section", "entry-point");
  }
}

void VerifyImports(const PeImage& image, Findings* findings) {
  const ImportTable imports = ReadImports(image);
  if (!imports.isComplete) {
    findings->AddError("executable", "its import table is damaged", "imports-damaged");
  }
  for (const ImportedLibrary& imported : imports.libraries) {
    const std::string where = "executable, imports of " + imported.name;
    const auto library = kOldWindowsFunctions.find(UpperCase(imported.name));
    if (library == kOldWindowsFunctions.end()) {
      findings->AddError(where, "only KERNEL32, SHELL32 and msvcrt may be imported", "library-not-allowed");
      continue;
    }
    for (const std::string& function : imported.functions) {
      const bool isListed = function.find(' ') == std::string::npos &&
                            library->second.find(" " + function + " ") != std::string_view::npos;
      if (!isListed) {
        findings->AddError(where, function + " is not known to be in Windows 2000 and XP", "import-too-new");
      }
    }
  }
}

void VerifyManifest(const std::vector<PeResource>& resources, Findings* findings) {
  constexpr std::uint32_t kProcessManifest = 1;  // CREATEPROCESS_MANIFEST_RESOURCE_ID
  const auto isManifest = [](const PeResource& resource) { return resource.type == kResourceTypeManifest; };
  const auto manifest = std::find_if(resources.begin(), resources.end(), isManifest);
  if (manifest == resources.end()) {
    findings->AddError("executable", "has no manifest", "no-manifest");
  } else if (std::count_if(resources.begin(), resources.end(), isManifest) > 1 || manifest->name != kProcessManifest ||
             manifest->bytes.Text() != kInstallerManifest) {
    findings->AddError("executable, manifest",
                       "is not the one manifest with the number 1 that asks for administrator rights, byte for byte as "
                       "this tool knows it",
                       "manifest");
  }
}

void VerifyResources(const PeImage& image, Findings* findings) {
  const std::vector<PeResource> resources = ReadResources(image);
  VerifyManifest(resources, findings);
  const ByteSpan version = FirstResource(resources, kResourceTypeVersion);
  const std::optional<VersionRecord> record = ReadVersionRecord(version);
  const std::string number = record ? record->fileVersion : "";
  // The text has all four parts of the number, or no zeros at its end.
  std::string text = record ? record->Text("FileVersion") : "";
  while (text.size() < number.size()) {
    text += ".0";
  }
  if (version.Empty()) {
    findings->AddError("executable", "has no version record", "no-version");
  } else if (!record) {
    findings->AddError("executable", "its version record is damaged", "version-damaged");
  } else if (number != record->productVersion || number != text) {
    findings->AddError("executable, version record",
                       "its versions differ: file " + number + " (\"" + record->Text("FileVersion") + "\"), product " +
                           record->productVersion,
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
  if (std::any_of(sections.begin(), sections.end(), std::mem_fn(&PeSection::IsTruncated))) {
    return;  // a finding of the layout, and missing bytes cannot be judged
  }
  VerifyHeaders(image, findings);
  VerifyImageLayout(image, findings);
  VerifyImports(image, findings);
  VerifyResources(image, findings);
  VerifyEnd(image, findings);
}

}  // namespace kwa
