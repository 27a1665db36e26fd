#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "installer_image.h"
#include "test_folder.h"

struct RunResult {
  DWORD exitStatus = 0;
  // How often the runtime's invalid-parameter line went to the debugger.
  int invalidParameterLines = 0;
  // Messages that Windows showed in the program's name; they were closed.
  int messageBoxes = 0;
  // Whether the stand-in for DPInst ran, and then its report: the files beside it by name, each as "SIZE SHA-256", and
  // dpinst.xml as it stood there.
  bool dpinstRan = false;
  std::string program, commandLine, currentFolder;
  int bitness = 0;
  std::map<std::string, std::string> files;
  std::string document;
  std::string error;  // what it has against dpinst.xml
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
  std::string program = InstallerPath();
};

// The edition of DPInst for the Windows under test.
const char* DpinstName();

// A file's contents as a report states them.
std::string Fingerprint(const std::string& contents);

// The files that DPInst must find beside itself, as a report states them, and their names, sorted.
std::map<std::string, std::string> ExpectedFiles(const std::string& document);
std::vector<std::string> ExpectedNames();

// dpinst.xml as the Windows under test must get it.
std::string ExpectedDocumentHere();
