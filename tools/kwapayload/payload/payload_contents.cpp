#include "payload/payload_contents.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "archive/archive_format.h"
#include "base/ascii_text.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

using nlohmann::json;

Result<json> ParseJson(std::string_view text) {
  try {
    return json::parse(text);
  } catch (const json::parse_error& error) {
    const std::string_view before = text.substr(0, error.byte > 0 ? error.byte - 1 : 0);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    return Failure("is not valid JSON: line " + std::to_string(line));
  } catch (const json::exception&) {
    return Failure("holds a number that is too large");
  }
}

// Each of these adds what is wrong to `faults`.
std::string ReadText(const char* key, const json& object, std::vector<std::string>* faults) {
  const auto field = object.find(key);
  if (field == object.end() || !field->is_string() || field->get_ref<const std::string&>().empty()) {
    faults->push_back(std::string("has no text \"") + key + "\"");
    return "";
  }
  return *field;
}

std::uint32_t ReadSize(const json& object, std::vector<std::string>* faults) {
  const auto field = object.find("size");
  if (field == object.end() || !field->is_number_unsigned() || field->get<std::uint64_t>() >= kEntrySizeLimit) {
    faults->push_back("has no \"size\" between 0 and 2147483647");
    return 0;
  }
  return *field;
}

ContentsFile ReadFile(const json& object, std::vector<std::string>* faults) {
  const std::string archive = ReadText("archive", object, faults);
  if (!archive.empty() && archive != "A" && archive != "B") {
    faults->push_back("has an \"archive\" other than A and B");
  }
  const ContentsFile file = {archive == "B" ? 'B' : 'A', ReadText("name", object, faults), ReadSize(object, faults),
                             ReadText("kind", object, faults)};
  if (const Check name = CheckEntryName(file.name); !file.name.empty() && !name) {
    faults->push_back(name.error().what);
  }
  return file;
}

// Windows must be able to tell the names apart, in both archives together.
void CheckNames(const PayloadContents& contents, std::vector<std::string>* faults) {
  std::vector<std::string> names;
  for (const ContentsFile& file : contents) {
    names.push_back(UpperCase(file.name));
  }
  std::sort(names.begin(), names.end());
  for (auto at = names.begin(); (at = std::adjacent_find(at, names.end())) != names.end(); ++at) {
    faults->push_back(*at + " is listed twice; for Windows, upper and lower case are the same");
  }
}

}  // namespace

tl::expected<PayloadContents, std::vector<std::string>> ReadPayloadContents(ByteSpan text) {
  const Result<json> document = ParseJson(text.Text());
  if (!document) {
    return tl::unexpected<std::vector<std::string>>({document.error().what});
  }
  const auto list = document->find("files");
  if (!document->is_object() || list == document->end() || !list->is_array() || list->empty()) {
    return tl::unexpected<std::vector<std::string>>({"has no list \"files\""});
  }
  PayloadContents contents;
  std::vector<std::string> faults;
  for (const json& object : *list) {
    std::vector<std::string> fileFaults;
    contents.push_back(ReadFile(object, &fileFaults));
    const std::string& name = contents.back().name;
    const std::string place = "file " + std::to_string(contents.size()) + (name.empty() ? "" : " (" + name + ")");
    for (const std::string& fault : fileFaults) {
      faults.push_back(place + ": " + fault);
    }
  }
  CheckNames(contents, &faults);
  if (!faults.empty()) {
    return tl::unexpected(std::move(faults));
  }
  std::sort(contents.begin(), contents.end(), [](const ContentsFile& left, const ContentsFile& right) {
    return std::pair(left.archive, UpperCase(left.name)) < std::pair(right.archive, UpperCase(right.name));
  });
  return contents;
}

std::string ContentsText(const PayloadContents& contents) {
  const auto quoted = [](const std::string& text) { return json(text).dump(); };
  std::string text = "{\n  \"files\": [";
  for (const ContentsFile& file : contents) {
    text += &file == &contents.front() ? "\n" : ",\n";
    text += "    {\"archive\": \"" + std::string(1, file.archive) + "\", \"name\": " + quoted(file.name) +
            ", \"size\": " + std::to_string(file.size) + ", \"kind\": " + quoted(file.kind) + "}";
  }
  return text + "\n  ]\n}\n";
}

}  // namespace kwa
