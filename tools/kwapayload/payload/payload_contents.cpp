#include "payload/payload_contents.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "archive/archive_format.h"
#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "base/input_file.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

using nlohmann::json;

json ParseJson(const std::filesystem::path& path) {
  InputFile input(path);
  std::string text;
  std::string buffer(64 * 1024, '\0');
  while (const std::size_t count = input.Read(buffer.data(), buffer.size())) {
    text.append(buffer, 0, count);
  }
  try {
    return json::parse(text);
  } catch (const json::parse_error& error) {
    const std::string before = text.substr(0, error.byte > 0 ? error.byte - 1 : 0);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    throw ToolFailure(path, "is not valid JSON: line " + std::to_string(line));
  } catch (const json::exception&) {
    throw ToolFailure(path, "holds a number that is too large");
  }
}

// Reads the fields of one file; collects in `faults` what is wrong with them.
class FieldReader {
 public:
  FieldReader(const json& objectToRead, std::vector<std::string>* faultList)
      : object(objectToRead), faults(faultList) {}

  std::string Text(const char* key) {
    const auto field = object.find(key);
    if (field == object.end() || !field->is_string() || field->get_ref<const std::string&>().empty()) {
      faults->push_back(std::string("has no text \"") + key + "\"");
      return "";
    }
    return field->get<std::string>();
  }

  std::uint32_t Number(const char* key) {
    const auto field = object.find(key);
    if (field == object.end() || !field->is_number_unsigned() || field->get<std::uint64_t>() >= kEntrySizeLimit) {
      faults->push_back(std::string("has no \"") + key + "\" between 0 and 2147483647");
      return 0;
    }
    return field->get<std::uint32_t>();
  }

 private:
  const json& object;
  std::vector<std::string>* faults;
};

ContentsFile ReadFile(const json& object, std::vector<std::string>* faults) {
  FieldReader fields(object, faults);
  ContentsFile file = {};
  const std::string archive = fields.Text("archive");
  if (archive == "A" || archive == "B") {
    file.archive = archive[0];
  } else if (!archive.empty()) {
    faults->push_back("has an \"archive\" other than A and B");
  }
  file.order = fields.Number("order");
  file.name = fields.Text("name");
  if (!file.name.empty()) {
    if (const std::string fault = EntryNameFault(file.name); !fault.empty()) {
      faults->push_back(fault);
    }
  }
  file.size = fields.Number("size");
  file.kind = fields.Text("kind");
  return file;
}

// The names must be told apart by Windows, and each archive's orders be 1, 2, 3, … along its upper-case names.
void CheckNamesAndOrder(PayloadContents sorted, std::vector<std::string>* faults) {
  std::sort(sorted.begin(), sorted.end(), [](const ContentsFile& left, const ContentsFile& right) {
    return UpperCase(left.name) < UpperCase(right.name);
  });
  std::map<char, std::uint32_t> place;
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const ContentsFile& file = sorted[i];
    if (i > 0 && IsSameText(sorted[i - 1].name, file.name)) {
      faults->push_back(file.name + " is listed twice; to Windows, upper and lower case are the same");
    }
    if (const std::uint32_t order = ++place[file.archive]; file.order != order) {
      faults->push_back(file.name + " has order " + std::to_string(file.order) + " in archive " + file.archive +
                        "; by its upper-case name it is " + std::to_string(order));
    }
  }
}

}  // namespace

PayloadContents ReadPayloadContents(const std::filesystem::path& path) {
  const json document = ParseJson(path);
  const auto list = document.find("files");
  if (!document.is_object() || list == document.end() || !list->is_array() || list->empty()) {
    throw ToolFailure(path, "has no list \"files\"");
  }
  PayloadContents contents;
  std::vector<std::string> faults;
  for (const json& object : *list) {
    std::vector<std::string> fileFaults;
    contents.push_back(ReadFile(object, &fileFaults));
    const std::string& name = contents.back().name;
    const std::string shown = name.empty() ? "" : " (" + EscapedText(name) + ")";
    for (const std::string& fault : fileFaults) {
      faults.push_back("file " + std::to_string(contents.size()) + shown + ": " + fault);
    }
  }
  if (faults.empty()) {
    CheckNamesAndOrder(contents, &faults);
  }
  if (!faults.empty()) {
    std::vector<Fault> lines;
    for (const std::string& fault : faults) {
      lines.push_back({ShownPath(path), fault});
    }
    throw ToolFailure(std::move(lines));
  }
  std::sort(contents.begin(), contents.end(), [](const ContentsFile& left, const ContentsFile& right) {
    return left.archive != right.archive ? left.archive < right.archive : left.order < right.order;
  });
  return contents;
}

std::string ContentsText(const PayloadContents& contents) {
  const auto quoted = [](const std::string& text) { return json(text).dump(); };
  std::string text = "{\n  \"files\": [";
  for (const ContentsFile& file : contents) {
    text += &file == &contents.front() ? "\n" : ",\n";
    text += "    {\"archive\": \"" + std::string(1, file.archive) + "\", \"order\": " + std::to_string(file.order) +
            ", \"name\": " + quoted(file.name) + ", \"size\": " + std::to_string(file.size) +
            ", \"kind\": " + quoted(file.kind) + "}";
  }
  return text + "\n  ]\n}\n";
}

PayloadContents SelectArchive(const PayloadContents& contents, char archive) {
  PayloadContents selected;
  std::copy_if(contents.begin(), contents.end(), std::back_inserter(selected),
               [archive](const ContentsFile& file) { return file.archive == archive; });
  return selected;
}

std::vector<Fault> CompareWithContents(const std::filesystem::path& folder, const std::vector<PayloadFile>& files,
                                       const PayloadContents& wanted) {
  std::map<std::string, const PayloadFile*> unexpected;
  for (const PayloadFile& file : files) {
    unexpected[file.name] = &file;
  }
  std::vector<Fault> faults;
  for (const ContentsFile& want : wanted) {
    const auto found = unexpected.find(want.name);
    if (found == unexpected.end()) {
      faults.push_back({ShownPath(folder / want.name), "is missing"});
      continue;
    }
    if (found->second->size != want.size) {
      faults.push_back({ShownPath(found->second->path), "has " + std::to_string(found->second->size) +
                                                            " bytes instead of " + std::to_string(want.size)});
    }
    unexpected.erase(found);
  }
  for (const auto& [name, file] : unexpected) {
    faults.push_back({ShownPath(file->path), "is not in the list of contents"});
  }
  return faults;
}

}  // namespace kwa
