#include "run_fixture.h"

#include "expected_document.h"
#include "windows_facts.h"

const char* DpinstName() {
  return Is64Bit() ? "dpinst64.exe" : "dpinst.exe";
}

std::map<std::string, std::string> ExpectedFiles(const std::string& document) {
  const InstallerImage image;
  std::map<std::string, std::string> files;
  for (const EmbeddedFile& file : image.A().files) {
    files[file.name] = Fingerprint(PayloadFile('a', file.name));
  }
  for (const EmbeddedFile& file : image.B().files) {
    files[file.name] = Fingerprint(PayloadFile('b', file.name));
  }
  files["dpinst.xml"] = Fingerprint(document);
  return files;
}

std::vector<std::string> ExpectedNames() {
  std::vector<std::string> names;
  for (const auto& [name, fingerprint] : ExpectedFiles("")) {
    names.push_back(name);
  }
  return names;
}

std::string ExpectedDocumentHere() {
  return ExpectedDocument(WindowsMajorVersion() <= 5);
}
