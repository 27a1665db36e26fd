#pragma once

#include <gtest/gtest.h>

#include "debugged_run.h"
#include "dpinst_report.h"
#include "installer_image.h"
#include "test_folder.h"

// What the runs of all tests share: the folder that TEMP names, one for the stand-in's report, one to start from.
class InstallerRun : public testing::Test {
 protected:
  // A run of the installer under test that is to report.
  RunSetup Setup() const {
    return {InstallerPath(), current, {{"TEMP", temp}, {"KWA_STANDIN_REPORT", reports}, {"KWA_STANDIN_EXIT", "1"}}};
  }

  // The same of a changed copy.
  RunSetup SetupOf(const InstallerImage& changed) const {
    changed.WriteTo(folder / "changed.exe");
    RunSetup setup = Setup();
    setup.program = folder / "changed.exe";
    return setup;
  }

  bool DpinstRan() const { return Exists(reports + "\\report.json"); }

  const TestFolder folder{};
  const std::string temp = folder.MakeFolder("temp");
  const std::string reports = folder.MakeFolder("reports");
  const std::string current = folder.MakeFolder("current");
  const std::string work = temp + "\\kwa";
};

// The edition of DPInst for the Windows under test.
const char* DpinstName();

// The files that DPInst must find beside itself, as a report states them; dpinst.xml as for this identity.
std::map<std::string, std::string> ExpectedFiles(const std::string& document);

// Their names, sorted.
std::vector<std::string> ExpectedNames();

// dpinst.xml as the Windows under test must get it.
std::string ExpectedDocumentHere();
