#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "installer_image.h"

struct RunResult {
  DWORD exitStatus = 0;
  // How often the line about an invalid parameter went to the debugger.
  int invalidParameterLines = 0;
  // The number of message boxes of the program. Each was closed.
  int messageBoxes = 0;
  nlohmann::json report;                     // of the stand-in for DPInst; null if it did not run
  std::map<std::string, std::string> files;  // in the stand-in's folder, by name, each as "SIZE SHA-256"
  std::string document;                      // dpinst.xml in that folder
};

// The folders of each run: one that TEMP names, one to start in, one for the report of the stand-in for DPInst.
class InstallerRun : public testing::Test {
 protected:
  // Runs the installer until it ends.
  RunResult Run() const { return RunWith(temp); }

  // The same with another TEMP, or without TEMP.
  RunResult RunWith(const std::optional<std::string>& value) const { return RunIn(current, value); }
  RunResult RunIn(const std::string& startFolder, const std::optional<std::string>& value) const;

  // Runs a changed copy.
  RunResult RunChanged(const InstallerImage& image);

  const TemporaryFolder folder{};
  const std::string temp = folder.MakeFolder("temp");
  const std::string reports = folder.MakeFolder("reports");
  const std::string current = folder.MakeFolder("current");
  const std::string work = temp + "\\kwa";
  std::string program = KWA_INSTALLER;
};

// The edition of DPInst for the Windows under test.
const char* DpinstName();

// The contents of a file as "SIZE SHA-256", as in a report.
std::string Fingerprint(const std::string& contents);

// The files that must be in the folder of DPInst, by name, each as "SIZE SHA-256".
std::map<std::string, std::string> ExpectedFiles(const std::string& document);
