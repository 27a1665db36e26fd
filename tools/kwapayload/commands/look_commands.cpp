#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "files/installer_input.h"
#include "files/payload_folder.h"
#include "files/tool_failure.h"
#include "installer/preview.h"
#include "package/driver_package.h"
#include "report/bill_of_materials.h"
#include "report/escaped_text.h"
#include "report/json_report.h"
#include "report/list_report.h"
#include "report/text_report.h"
#include "verify/verification.h"

namespace kwa {
namespace {

struct ListOptions {
  std::filesystem::path file;
  bool asJson = false;
  bool asCycloneDx = false;
};

// The columns of the terminal on standard output; 0 where it is no terminal.
std::size_t TerminalWidth() {
  winsize size = {};
  return ::isatty(STDOUT_FILENO) == 1 && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

int RunList(const ListOptions& options) {
  const InstallerInput input(options.file);
  const Inspection inspection = Inspect(input.SoundInstaller());
  const std::string name = options.file.filename().string();
  if (options.asCycloneDx) {
    std::cout << BillOfMaterials(name, inspection);
  } else {
    std::cout << (options.asJson ? ListJson(name, inspection) : ListText(name, inspection, TerminalWidth()));
  }
  return kExitInOrder;
}

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

struct PreviewOptions {
  std::filesystem::path file;
  std::string windows;
};

int RunPreview(const PreviewOptions& options) {
  const InstallerInput input(options.file);
  const InstallerFile& installer = input.SoundInstaller();
  const std::optional<DriverPackage> package = ReadDriverPackage(installer.items);
  // Without an INF, the installer writes its configuration with nothing about the package.
  const PackageIdentity identity = package ? package->identity : PackageIdentity();
  std::cout << PreviewDpinstConfig(identity, options.windows == "xp");
  std::string doubt;
  if (!identity.certainty) {
    doubt = std::string(package->inf.name) + " " + identity.certainty.error().what;
  } else if (!HasKnownTexts(installer)) {
    doubt = "has other texts than this tool";
  }
  if (!doubt.empty()) {
    std::cerr << "kwapayload: " << Escaped(options.file.string()) << ": " << Escaped(doubt)
              << ": what is printed is a guess\n";
    return kExitFindings;
  }
  return kExitInOrder;
}

struct CompareOptions {
  std::filesystem::path before;
  std::filesystem::path after;
  bool asJson = false;
};

int RunCompare(const CompareOptions& options) {
  const InstallerInput fileBefore(options.before);
  const InstallerInput fileAfter(options.after);
  const Inspection before = Inspect(fileBefore.SoundFile());
  const Inspection after = Inspect(fileAfter.SoundFile());
  const Comparison comparison = Compare(before, after);
  std::cout << (options.asJson ? CompareJson(comparison) : CompareText(comparison));
  return comparison.IsAlike() ? kExitInOrder : kExitFindings;
}

}  // namespace

Command AddListCommand(CLI::App& program) {
  const auto options = std::make_shared<ListOptions>();
  CLI::App* const list = program.add_subcommand("list", "Shows what an installer or a payload archive holds");
  list->add_option("FILE", options->file, kFileHelp)->required();
  CLI::Option* const json = list->add_flag("--json", options->asJson, "Writes JSON");
  list->add_flag("--cyclonedx", options->asCycloneDx, "Writes a bill of materials in CycloneDX 1.6 (JSON)")
      ->excludes(json);
  list->footer(
      "CATALOG: whether the driver package's catalog covers the file.\n"
      "A signature is BROKEN where it does not fit what it signs or its certificate; who may\n"
      "be trusted is not judged. Bytes of a name that are not printable show as \\xHH.\n"
      "--json has more: places and digests.\n"
      "\n"
      "Example:\n"
      "  kwapayload list kwa_installer.exe");
  return {list, [options] { return RunList(*options); }};
}

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

Command AddPreviewCommand(CLI::App& program) {
  const auto options = std::make_shared<PreviewOptions>();
  CLI::App* const preview = program.add_subcommand("preview", "Prints the dpinst.xml that an installer will write");
  preview->add_option("FILE", options->file, kFileHelp)->required();
  preview
      ->add_option("--windows", options->windows, "The Windows that it will run on: vista (or later) or xp (or 2000)")
      ->check(CLI::IsMember({"vista", "xp"}))
      ->default_val("vista");
  preview->footer(
      "Byte for byte what the installer writes, line ends of Windows included. Where that\n"
      "cannot be known, prints what is likely, says so on the error stream and exits with 1:\n"
      "the installer has other wizard texts than this program, or the INF's version or\n"
      "display name is not plain text for every Windows.\n"
      "\n"
      "Example:\n"
      "  kwapayload preview kwa_installer.exe --windows xp > dpinst.xml");
  return {preview, [options] { return RunPreview(*options); }};
}

Command AddCompareCommand(CLI::App& program) {
  const auto options = std::make_shared<CompareOptions>();
  CLI::App* const compare = program.add_subcommand("compare", "Shows what differs between two releases");
  compare->add_option("OLD", options->before, "Installer, signed or not, or payload archive")->required();
  compare->add_option("NEW", options->after, "The same")->required();
  compare->add_flag("--json", options->asJson, "Writes JSON");
  compare->footer(
      "Prints nothing but differences: of files, package, dpinst.xml (as on Windows Vista\n"
      "and later), and of the program around the payload without its signature.\n"
      "Exit status: 0 alike, 1 different, 2 could not be compared, or misuse.\n"
      "\n"
      "Example:\n"
      "  kwapayload compare kwa_installer-1.0.exe kwa_installer-1.1.exe");
  return {compare, [options] { return RunCompare(*options); }};
}

}  // namespace kwa
