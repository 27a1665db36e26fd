#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

#include "report/escaped_text.h"
#include "files/mapped_file.h"
#include "installer/installer_file.h"
#include "payload/payload_contents.h"
#include "verify/verification.h"

namespace kwa {
namespace {

struct VerifyOptions {
  std::filesystem::path file;
  std::filesystem::path contents;
  bool asJson = false;
  bool allowWarnings = false;
};

const char* SeverityWord(Severity severity) {
  return severity == Severity::Error ? "error" : "warning";
}

void PrintLines(const std::filesystem::path& file, const Findings& findings) {
  for (const Finding& finding : findings) {
    std::cout << SeverityWord(finding.severity) << ": " << finding.where << (finding.where.empty() ? "" : ": ")
              << finding.what << '\n';
  }
  if (findings.Empty()) {
    std::cout << ShownPath(file) << ": in order\n";
  }
}

void PrintJson(const std::filesystem::path& file, const Findings& findings) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Finding& finding : findings) {
    list.push_back({{"severity", SeverityWord(finding.severity)},
                    {"code", finding.code},
                    {"where", finding.where},
                    {"what", finding.what}});
  }
  const nlohmann::ordered_json document = {{"file", ShownPath(file)}, {"findings", std::move(list)}};
  std::cout << document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void RunVerify(const VerifyOptions& options) {
  const PayloadContents contents = options.contents.empty() ? PayloadContents() : ReadPayloadContents(options.contents);
  const MappedFile file(options.file);
  const InstallerFile installer = ReadInstallerFile(file.Bytes(), options.file);
  const Findings findings = VerifyInstaller(installer, contents);
  options.asJson ? PrintJson(options.file, findings) : PrintLines(options.file, findings);
  if (findings.HasError() || (!findings.Empty() && !options.allowWarnings)) {
    throw CLI::RuntimeError(EXIT_FAILURE);
  }
}

}  // namespace

void AddVerifyCommand(CLI::App& app) {
  const auto options = std::make_shared<VerifyOptions>();
  CLI::App* const verify = app.add_subcommand("verify", "Checks an installer for all that could make it fail");
  verify->add_option("FILE", options->file, "Installer, signed or not, or payload archive")->required();
  verify->add_option("--contents", options->contents,
                     "List of the files that it must hold; without it, only those are asked for that the installer "
                     "itself names");
  verify->add_flag("--json", options->asJson, "Prints the findings as JSON");
  verify->add_flag("--allow-warnings", options->allowWarnings, "Exits with 0 when no finding is an error");
  verify->footer(
      "Prints one line a finding:\n"
      "  error: …     the installer fails, or installs something wrong\n"
      "  warning: …   no run fails by it, but somebody should look\n"
      "Signatures are held to what they sign and to their certificates. Whether Windows trusts those, by chain, date "
      "and\n"
      "revocation, is not judged.\n"
      "Exit status: 0 in order, 1 findings or failure, 2 misuse.\n"
      "\n"
      "Example:\n"
      "  kwapayload verify kwa_installer.exe --contents payload/contents.json");
  verify->callback([options] { RunVerify(*options); });
}

}  // namespace kwa
