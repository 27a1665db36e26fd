#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include "base/ascii_text.h"
#include "content/file_kind.h"
#include "content/text_kind.h"
#include "payload/entry_name.h"
#include "verify/verification.h"

namespace kwa {
namespace {

// The element with a name, exactly as it is written, or null.
template <typename Element>
const Element* FindName(const std::vector<Element>& list, std::string_view name) {
  const auto found = std::find_if(list.begin(), list.end(), [&](const Element& one) { return one.name == name; });
  return found == list.end() ? nullptr : &*found;
}

void CompareFile(const ArchiveItem& item, const ContentsFile& wanted, Findings* findings) {
  if (item.body.Size() != wanted.size) {
    findings->AddError(Where(item),
                       "has " + std::to_string(item.body.Size()) + " bytes instead of " + std::to_string(wanted.size),
                       "size");
  } else if (const std::string kind = KindText(ReadFileKind(item.body)); kind != wanted.kind) {
    findings->AddError(Where(item), "is " + kind + " instead of " + wanted.kind, "kind");
  }
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

void VerifyText(const ArchiveItem& item, Findings* findings) {
  const std::optional<TextKind> text = ReadTextKind(item.body);
  if (!IsUtf8(item.body)) {
    findings->AddError(Where(item), "is not valid UTF-8, as which DPInst reads it", "not-utf8");
  } else if (!text || text->lineEnds != LineEnds::CrLf) {
    findings->AddWarning(Where(item), "is not a text with CR LF line ends: DPInst may show it as one line",
                         "line-ends");
  }
}

// What no list can switch off.
void VerifyCompanion(const ArchiveItem& item, const Companion& companion, Findings* findings) {
  if (companion.kind == nullptr) {
    VerifyText(item, findings);
    return;
  }
  const FileKind kind = ReadFileKind(item.body);
  if (KindText(kind).rfind(companion.kind, 0) != 0) {
    findings->AddError(Where(item), "is " + KindText(kind) + " instead of " + companion.kind, "companion-kind");
  } else if (kind.program && !kind.program->isSigned) {
    findings->AddError(Where(item), "is not signed, as Microsoft's DPInst is", "dpinst-unsigned");
  }
}

}  // namespace

void VerifyContents(const std::vector<ArchiveItem>& items, const PayloadContents& contents, char archive,
                    Findings* findings) {
  std::vector<ArchiveItem> found;
  std::copy_if(items.begin(), items.end(), std::back_inserter(found),
               [archive](const ArchiveItem& item) { return item.archive == archive; });
  PayloadContents wanted;
  std::copy_if(contents.begin(), contents.end(), std::back_inserter(wanted),
               [archive](const ContentsFile& file) { return file.archive == archive; });
  if (contents.empty()) {
    return;
  }
  std::vector<std::string_view> replaced;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const ArchiveItem& item = found[i];
    if (const ContentsFile* const file = FindName(wanted, item.name)) {
      CompareFile(item, *file, findings);
    } else if (i < wanted.size() && FindName(found, wanted[i].name) == nullptr) {
      // A changed name is one fault, not a missing and an unexpected file.
      replaced.emplace_back(wanted[i].name);
      if (CheckEntryName(item.name)) {  // otherwise the name itself is a finding
        findings->AddError(Where(item), "is in the place of " + wanted[i].name, "unexpected-file");
      }
    } else {
      findings->AddError(Where(item), "is not in the list of contents", "unexpected-file");
    }
  }
  for (const ContentsFile& file : wanted) {
    if (FindName(found, file.name) == nullptr &&
        std::find(replaced.begin(), replaced.end(), file.name) == replaced.end()) {
      findings->AddError(std::string("archive ") + archive + ", " + file.name, "is missing", "missing-file");
    }
  }
}

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

void VerifyUse(const std::vector<ArchiveItem>& items, const std::optional<DriverPackage>& package,
               const PackageTrust& trust, Findings* findings) {
  std::set<std::string> used;
  for (const Companion& companion : kCompanions) {
    used.insert(UpperCase(companion.name));
  }
  const bool isSetupKnown = package && package->setup && !package->setup->inf.HasError();
  if (isSetupKnown) {
    used.insert(UpperCase(package->inf.name));
    for (const PackagePlatform& platform : package->setup->platforms) {
      for (const InfSourceFile& source : platform.sourceFiles) {
        used.insert(UpperCase(source.name));
      }
      for (const InfCopiedFile& copied : platform.copiedFiles) {
        used.insert(UpperCase(copied.source));
      }
    }
    for (const PackageCatalog& catalog : trust.catalogs) {
      used.insert(UpperCase(catalog.name));
      if (catalog.catalog && *catalog.catalog) {
        used.insert((*catalog.catalog)->fileNames.begin(), (*catalog.catalog)->fileNames.end());
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

}  // namespace kwa
