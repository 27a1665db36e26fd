#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace kwa {

// Describes this process: "program", "commandLine", "currentFolder", "bitness" (32 or 64) and "files", with the name,
// size in bytes and SHA-256 of every file in the program's own folder.
nlohmann::ordered_json DescribeRun(const std::wstring& ownFolder);

// Writes report.json into a folder and copies dpinst.xml there from the program's own folder. Returns false when
// report.json cannot be written.
bool WriteReport(const nlohmann::ordered_json& report, const std::wstring& ownFolder, const std::wstring& folder);

}  // namespace kwa
