#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "files/contents_input.h"
#include "files/installer_input.h"
#include "files/tool_failure.h"
#include "report/json_report.h"
#include "report/text_report.h"
#include "verify/verification.h"

namespace kwa {
namespace {

struct VerifyOptions {
  std::filesystem::path file;
  std::filesystem::path contents;
  std::string archiveLetter;
  bool asJson = false;
  bool allowWarnings = false;
};

int RunVerify(const VerifyOptions& options) {
  const PayloadContents contents = options.contents.empty() ? PayloadContents() : ReadContentsFile(options.contents);
  const InstallerInput input(options.file);
  InstallerFile installer = input.Installer();
  if (!contents.empty() && !installer.HoldsBothArchives()) {
    if (options.archiveLetter.empty()) {
      throw ToolFailure(options.file, "is only one of two archives; --archive says which one of the list it must be");
    }
    for (ArchiveItem& item : installer.items) {
      item.archive = options.archiveLetter[0];
    }
  }
  const Verification verification = VerifyInstaller(installer, contents);
  const Findings& findings = verification.findings;
  const std::string file = options.file.string();
  std::cout << (options.asJson ? VerifyJson(file, verification) : VerifyText(file, verification));
  return findings.HasError() || (!findings.Empty() && !options.allowWarnings) ? kExitFindings : kExitInOrder;
}

}  // namespace

Command AddVerifyCommand(CLI::App& program) {
  const auto options = std::make_shared<VerifyOptions>();
  CLI::App* const verify = program.add_subcommand("verify", "Checks an installer for all that could make it fail");
  verify->add_option("FILE", options->file, kFileHelp)->required();
  CLI::Option* const contents =
      verify->add_option("--contents", options->contents,
                         "List of the files that it must hold (default: those that the installer itself names)");
  verify->add_option("--archive", options->archiveLetter, "Which archive of the list FILE is, if it is a single one")
      ->check(CLI::IsMember({"A", "B"}))
      ->needs(contents);
  verify->add_flag("--json", options->asJson, "Prints the findings as JSON");
  verify->add_flag("--allow-warnings", options->allowWarnings, "Exits with 0 when no finding is an error");
  verify->footer(
      "Prints who signed the installer, and one line a finding with its code:\n"
      "  error: … [CODE]     the installer fails, or installs something wrong\n"
      "  warning: … [CODE]   no run fails because of it, but somebody should look\n"
      "Checks whether signatures fit what they sign and their certificates. Whether Windows\n"
      "trusts those, by chain, date and revocation, is not judged.\n"
      "Exit status: 0 in order, 1 findings, 2 could not be checked, or misuse.\n"
      "\n"
      "Example:\n"
      "  kwapayload verify kwa_installer.exe --contents payload/contents.json");
  return {verify, [options] { return RunVerify(*options); }};
}

}  // namespace kwa
