#include <algorithm>
#include <string>

#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "content/text_kind.h"
#include "content/file_kind.h"
#include "payload/entry_name.h"
#include "verify/verification.h"

namespace kwa {
namespace {

const ContentsFile* FindWanted(const PayloadContents& wanted, std::string_view name) {
  const auto found =
      std::find_if(wanted.begin(), wanted.end(), [&](const ContentsFile& file) { return file.name == name; });
  return found == wanted.end() ? nullptr : &*found;
}

const ArchiveItem* FindItem(const std::vector<ArchiveItem>& items, std::string_view name) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const ArchiveItem& item) { return item.name == name; });
  return found == items.end() ? nullptr : &*found;
}

// Which list a single archive is held to: the one that it shares more names with.
char BestLetter(const LocatedArchive& located, const PayloadContents& contents) {
  if (located.letter != "-") {
    return located.letter[0];
  }
  std::size_t shared[2] = {};
  for (const ContentsFile& file : contents) {
    shared[file.archive == 'B' ? 1 : 0] += FindItem(located.archive.items, file.name) != nullptr ? 1 : 0;
  }
  return shared[1] > shared[0] ? 'B' : 'A';
}

void CompareArchive(const LocatedArchive& located, const PayloadContents& contents, Findings* findings) {
  const char letter = BestLetter(located, contents);
  const PayloadContents wanted = SelectArchive(contents, letter);
  const std::vector<ArchiveItem>& items = located.archive.items;
  const std::string prefix = std::string("archive ") + letter + ", ";
  std::vector<std::string_view> renamed;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const ArchiveItem& item = items[i];
    const std::string where = prefix + EscapedText(item.name);
    if (const ContentsFile* const file = FindWanted(wanted, item.name)) {
      if (item.size != file->size) {
        findings->AddError(
            where, "has " + std::to_string(item.size) + " bytes instead of " + std::to_string(file->size), "size");
      } else if (const std::string kind = FileKind(item.body); kind != file->kind) {
        findings->AddError(where, "is " + kind + " instead of " + file->kind, "kind");
      }
    } else if (i < wanted.size() && FindItem(items, wanted[i].name) == nullptr) {
      // A changed name is one fault, not a missing and an unexpected file.
      renamed.emplace_back(wanted[i].name);
      if (EntryNameFault(item.name).empty()) {  // else the name itself is reported already
        findings->AddError(where, "stands in the place of " + wanted[i].name, "unexpected-file");
      }
    } else {
      findings->AddError(where, "is not in the list of contents", "unexpected-file");
    }
  }
  for (const ContentsFile& file : wanted) {
    if (FindItem(items, file.name) == nullptr &&
        std::find(renamed.begin(), renamed.end(), file.name) == renamed.end()) {
      findings->AddError(prefix + file.name, "is missing", "missing-file");
    }
  }
}

// What the installer and the file that it writes rely upon by name.
struct Companion {
  const char* name;
  const char* kind;  // as FileKind begins; null for a text that only has to be UTF-8
};

constexpr Companion kCompanions[] = {
    {"dpinst.exe", "PE32, x86, Windows GUI program"},
    {"dpinst64.exe", "PE32+, x64, Windows GUI program"},
    {"eula_de.txt", nullptr},
    {"eula_en.txt", nullptr},
    {"kwa.bmp", "Windows bitmap, 51 x 305 pixels"},
};

}  // namespace

void VerifyContents(const InstallerFile& installer, const PayloadContents& contents, Findings* findings) {
  if (contents.empty()) {
    return;
  }
  for (const LocatedArchive& located : installer.archives) {
    CompareArchive(located, contents, findings);
  }
}

void VerifyCompanions(const InstallerFile& installer, const PayloadContents& contents, Findings* findings) {
  for (const Companion& companion : kCompanions) {
    if (FindWanted(contents, companion.name) != nullptr) {
      continue;
    }
    const ArchiveItem* found = nullptr;
    std::string where = companion.name;
    for (const LocatedArchive& located : installer.archives) {
      for (const ArchiveItem& item : located.archive.items) {
        if (IsSameText(item.name, companion.name)) {
          found = &item;
          where = located.Where(item);
        }
      }
    }
    if (found == nullptr) {
      findings->AddError(where, "is missing", "missing-file");
    } else if (companion.kind != nullptr && FileKind(found->body).rfind(companion.kind, 0) != 0) {
      findings->AddError(where, "is " + FileKind(found->body) + " instead of " + companion.kind, "kind");
    } else if (companion.kind == nullptr && !IsUtf8(found->body)) {
      findings->AddError(where, "is not valid UTF-8, which DPInst takes it for", "not-utf8");
    }
  }
}

}  // namespace kwa
