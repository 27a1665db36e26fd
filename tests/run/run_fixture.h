#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "installer_image.h"
#include "test_folder.h"

struct RunResult {
  DWORD exitStatus = 0;
  // How often the runtime's invalid-parameter line went to the debugger.
  int invalidParameterLines = 0;
  // Messages that Windows showed in the program's name; they were closed.
  int messageBoxes = 0;
  // What the stand-in for DPInst reports; null where it did not run. Then the files beside it by name, each as "SIZE
  // SHA-256", and dpinst.xml as it stood there.
  nlohmann::json report;
  std::map<std::string, std::string> files;
  std::string document;
};

// What the runs of all tests share: the folder that TEMP names, one to start from, one for DPInst's report.
class InstallerRun : public testing::Test {
 protected:
  // Runs the installer under test to its end.
  RunResult Run() const { return RunWith(temp); }

  // With another TEMP, or without one.
  RunResult RunWith(const std::optional<std::string>& value) const { return RunIn(current, value); }
  RunResult RunIn(const std::string& startFolder, const std::optional<std::string>& value) const;

  // Runs a changed copy.
  RunResult RunChanged(const InstallerImage& image);

  const TestFolder folder{};
  const std::string temp = folder.MakeFolder("temp");
  const std::string reports = folder.MakeFolder("reports");
  const std::string current = folder.MakeFolder("current");
  const std::string work = temp + "\\kwa";
  std::string program = KWA_INSTALLER;
};

// The edition of DPInst for the Windows under test.
const char* DpinstName();

// A file's contents as a report states them.
std::string Fingerprint(const std::string& contents);

// The files that DPInst must find beside itself, as a report states them.
std::map<std::string, std::string> ExpectedFiles(const std::string& document);
