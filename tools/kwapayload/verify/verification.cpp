#include "verify/verification.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "base/ascii_text.h"
#include "content/file_kind.h"
#include "payload/entry_name.h"
#include "trust/signature.h"

namespace kwa {
namespace {

// Structure of file and archives, and the names as the installer uses them.
void VerifyLayout(const InstallerFile& installer, Findings* findings) {
  findings->AddAll(installer.findings);
  std::map<std::string, std::string> known;       // upper-case name, and where it is
  std::map<char, std::string> previousOfArchive;  // the upper-case name before
  for (const ArchiveItem& item : installer.items) {
    const std::string where = Where(item);
    if (!IsZeroFilled(item.padding)) {
      findings->AddWarning(where, "the padding after its body is not zero", "padding");
    }
    if (const Check name = CheckEntryName(item.name); !name) {
      findings->AddError(where, name.error().what, "name-unfit");
      continue;
    }
    const std::string upper = UpperCase(item.name);
    std::string& previous = previousOfArchive[item.archive];
    if (const auto [other, isNew] = known.emplace(upper, where); !isNew) {
      findings->AddError(where, "has the same name as " + other->second, "name-twice");
    } else if (upper < previous) {
      findings->AddWarning(where, "comes after a name that sorts after it", "order");
    }
    previous = upper;
  }
}

// The element with a name, exactly as it is written, or null.
template <typename Element>
const Element* FindName(const std::vector<Element>& list, std::string_view name) {
  const auto found = std::find_if(list.begin(), list.end(), [&](const Element& one) { return one.name == name; });
  return found == list.end() ? nullptr : &*found;
}

// A file that the installer and its configuration refer to by name.
struct Companion {
  const char* name;
  const char* kind;  // the beginning of its KindText; null for a licence text
};

constexpr Companion kCompanions[] = {
    {"dpinst.exe", "PE32, x86, Windows GUI program"},
    {"dpinst64.exe", "PE32+, x64, Windows GUI program"},
    {"eula_de.txt", nullptr},
    {"eula_en.txt", nullptr},
    {"kwa.bmp", "Windows bitmap, 51 x 305 pixels"},
};

// What no list can switch off.
void VerifyCompanion(const ArchiveItem& item, const Companion& companion, Findings* findings) {
  const FileKind kind = ReadFileKind(item.body);
  if (companion.kind == nullptr) {
    const std::optional<TextKind> text = ReadTextKind(item.body);
    if (!IsUtf8(item.body)) {
      findings->AddError(Where(item), "is not valid UTF-8, as which DPInst reads it", "not-utf8");
    } else if (!text || text->lineEnds != LineEnds::CrLf) {
      findings->AddWarning(Where(item), "is not a text with CR LF line ends: DPInst may show it as one line",
                           "line-ends");
    }
  } else if (KindText(kind).rfind(companion.kind, 0) != 0) {
    findings->AddError(Where(item), "is " + KindText(kind) + " instead of " + companion.kind, "companion-kind");
  } else if (kind.program && !kind.program->isSigned) {
    findings->AddError(Where(item), "is not signed, as Microsoft's DPInst is", "dpinst-unsigned");
  }
}

// The files that the installer and its configuration name: both editions of DPInst, licence texts, watermark. Missing
// files that `contents` lists are left to VerifyContents.
void VerifyCompanions(const std::vector<ArchiveItem>& items, const PayloadContents& contents, Findings* findings) {
  for (const Companion& companion : kCompanions) {
    const ArchiveItem* const item = FindItem(items, companion.name);
    if (item != nullptr) {
      VerifyCompanion(*item, companion, findings);
    } else if (FindName(contents, companion.name) == nullptr) {
      findings->AddError(companion.name, "is missing", "missing-file");
    }
  }
  if (const ArchiveItem* const item = FindItem(items, "dpinst.xml")) {
    findings->AddError(Where(*item), "is carried, but the installer overwrites it", "dpinst-xml-carried");
  }
}

// Whether something refers to each item.
void VerifyUse(const std::vector<ArchiveItem>& items, const std::optional<DriverPackage>& package,
               const PackageTrust& trust, Findings* findings) {
  std::set<std::string> used;
  for (const Companion& companion : kCompanions) {
    used.insert(UpperCase(companion.name));
  }
  const bool isSetupKnown = package && package->setup && !package->setup->Faults().HasError();
  if (isSetupKnown) {
    used.insert(UpperCase(package->inf.name));
    for (const PlatformInf& platform : package->platforms) {
      used.insert(platform.sourceNames.begin(), platform.sourceNames.end());
      for (const InfCopiedFile& copied : platform.copiedFiles) {
        used.insert(UpperCase(copied.source));
      }
    }
    for (const std::shared_ptr<PackageCatalog>& catalog : trust.catalogs) {
      used.insert(UpperCase(catalog->name));
      if (catalog->catalog && *catalog->catalog) {
        used.insert((*catalog->catalog)->fileNames.begin(), (*catalog->catalog)->fileNames.end());
      }
    }
  }
  for (const ArchiveItem& item : items) {
    const bool isOfPackage = item.archive != 'B';
    if ((!isOfPackage || isSetupKnown) && CheckEntryName(item.name) && used.count(UpperCase(item.name)) == 0) {
      findings->AddWarning(Where(item),
                           isOfPackage ? "is named by neither the INF nor a catalog"
                                       : "is used by neither the installer nor its dpinst.xml",
                           "not-used");
    }
  }
}

}  // namespace

std::string Where(const ArchiveItem& item) {
  return (item.archive == '-' ? "" : std::string("archive ") + item.archive + ", ") + std::string(item.name);
}

void VerifyContents(const std::vector<ArchiveItem>& items, const PayloadContents& contents, char archive,
                    Findings* findings) {
  if (contents.empty()) {
    return;
  }
  const auto isInArchive = [archive](const auto& file) { return file.archive == archive; };
  std::vector<ArchiveItem> found;
  std::copy_if(items.begin(), items.end(), std::back_inserter(found), isInArchive);
  PayloadContents wanted;
  std::copy_if(contents.begin(), contents.end(), std::back_inserter(wanted), isInArchive);
  // A changed name is one fault, not a missing and an unexpected file.
  const auto isRenamed = [&](std::size_t i) {
    return i < found.size() && i < wanted.size() && FindName(wanted, found[i].name) == nullptr &&
           FindName(found, wanted[i].name) == nullptr;
  };
  for (std::size_t i = 0; i < found.size(); ++i) {
    const ArchiveItem& item = found[i];
    if (const ContentsFile* const file = FindName(wanted, item.name)) {
      if (item.body.Size() != file->size) {
        findings->AddError(
            Where(item), "has " + std::to_string(item.body.Size()) + " bytes instead of " + std::to_string(file->size),
            "size");
      } else if (const std::string kind = KindText(ReadFileKind(item.body)); kind != file->kind) {
        findings->AddError(Where(item), "is " + kind + " instead of " + file->kind, "kind");
      }
    } else if (!isRenamed(i)) {
      findings->AddError(Where(item), "is not in the list of contents", "unexpected-file");
    } else if (CheckEntryName(item.name)) {  // otherwise the name itself is a finding
      findings->AddError(Where(item), "is in the place of " + wanted[i].name, "unexpected-file");
    }
  }
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (FindName(found, wanted[i].name) == nullptr && !isRenamed(i)) {
      findings->AddError(std::string("archive ") + archive + ", " + wanted[i].name, "is missing", "missing-file");
    }
  }
}

Verification VerifyInstaller(const InstallerFile& installer, const PayloadContents& contents) {
  Verification verification;
  Findings& findings = verification.findings;
  VerifyLayout(installer, &findings);
  // What the files say about each other, or about a list, can be judged only where all of them are there.
  if (installer.IsWhole()) {
    const std::vector<ArchiveItem>& items = installer.items;
    const std::optional<DriverPackage> package = ReadDriverPackage(items);
    const PackageTrust trust = ReadPackageTrust(items, package);
    for (const char archive : {'A', 'B'}) {
      if (installer.HoldsBothArchives() || (!items.empty() && items.front().archive == archive)) {
        VerifyContents(items, contents, archive, &findings);
      }
    }
    if (installer.HoldsBothArchives()) {
      VerifyCompanions(items, contents, &findings);
    }
    if (installer.HoldsBothArchives() || package) {
      VerifyPackage(items, package, &findings);
      VerifyUse(items, package, trust, &findings);
    }
    if (package) {
      VerifyVersions(items, *package, &findings);
    }
    VerifyTrust(items, trust, &findings);
  }
  if (installer.image) {
    FileDigests digests(installer.bytes);
    verification.signatures = ReadEmbeddedSignatures(digests);
    VerifySignatures("executable", verification.signatures, "signature-broken", &findings);
    VerifyExecutable(*installer.image, &findings);
  }
  return verification;
}

}  // namespace kwa
