#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace kwa {

// The process as its starter made it: "program", "commandLine", "currentFolder", "bitness" (32 or 64) and "files", the
// name, size in bytes and SHA-256 of every file in the program's own folder.
nlohmann::ordered_json DescribeRun(const std::wstring& ownFolder);

// Writes the report as report.json, and dpinst.xml of the program's own folder byte for byte, into the named folder.
// False when report.json could not be written.
bool WriteReport(const nlohmann::ordered_json& report, const std::wstring& ownFolder, const std::wstring& folder);

}  // namespace kwa
