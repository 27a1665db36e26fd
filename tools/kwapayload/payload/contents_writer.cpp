#include "payload/contents_writer.h"

#include <nlohmann/json.hpp>

namespace kwa {

std::string ContentsText(const PayloadContents& contents) {
  const auto quoted = [](const std::string& text) { return nlohmann::json(text).dump(); };
  std::string text = "{\n  \"files\": [";
  for (const ContentsFile& file : contents) {
    text += &file == &contents.front() ? "\n" : ",\n";
    text += "    {\"archive\": \"" + std::string(1, file.archive) + "\", \"order\": " + std::to_string(file.order) +
            ", \"name\": " + quoted(file.name) + ", \"size\": " + std::to_string(file.size) +
            ", \"kind\": " + quoted(file.kind) + "}";
  }
  return text + "\n  ]\n}\n";
}

}  // namespace kwa
