#pragma once

#include <map>
#include <string>

// What the stand-in for DPInst reported of a run.
struct DpinstReport {
  std::string program;
  std::string commandLine;
  std::string currentFolder;
  int bitness = 0;
  // The files beside it by name, each as "SIZE SHA-256".
  std::map<std::string, std::string> files;
  // dpinst.xml as it stood there; empty when there was none.
  std::string document;
};

// Reads the report in a folder.
DpinstReport ReadReport(const std::string& folder);

// A file's contents as the report states them.
std::string Fingerprint(const std::string& contents);
