// kwapayload: packs payload archives and looks into built installers, on the build machine.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "files/output_file.h"
#include "files/tool_failure.h"
#include "commands/commands.h"

namespace {

constexpr int kExitFailure = 1;
constexpr int kExitMisuse = 2;

int Run(int argc, char** argv, int* failure) {
  CLI::App app("Packs payload archives and looks into built installers.", "kwapayload");
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 in order, 1 findings or failure, 2 misuse; compare has its own.\n'kwapayload COMMAND --help' "
      "shows an example.");
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string("kwapayload: ") + error.what() + "; 'kwapayload --help' tells the usage\n";
  });
  kwa::AddCompareCommand(app);
  kwa::AddContentsCommand(app);
  kwa::AddPackCommand(app);
  kwa::AddListCommand(app);
  kwa::AddExtractCommand(app);
  kwa::AddVerifyCommand(app);
  kwa::AddPreviewCommand(app);
  // An empty value is a script's unset variable: taken for no value, it would silently drop what the option asks for.
  const CLI::Validator notEmpty([](std::string& value) { return value.empty() ? "the value is empty" : ""; }, "");
  for (CLI::App* const command : app.get_subcommands({})) {
    for (CLI::Option* const option : command->get_options()) {
      option->check(notEmpty);
    }
  }
  // What 1 says there is that the files differ.
  app.get_subcommand("compare")->preparse_callback([failure](std::size_t) { *failure = kExitMisuse; });
  try {
    app.parse(argc, argv);
  } catch (const CLI::RuntimeError& error) {
    return error.get_exit_code();  // a command that ran and has something to say
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? EXIT_SUCCESS : kExitMisuse;
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  // A file larger than the user's limit is then a failed write, reported and cleaned up like any other.
  std::signal(SIGXFSZ, SIG_IGN);
  kwa::RemoveTemporaryFilesOnSignals();
  int failure = kExitFailure;
  int status = 0;
  try {
    status = Run(argc, argv, &failure);
  } catch (const kwa::ToolFailure& faulty) {
    for (const kwa::Fault& fault : faulty.Faults()) {
      std::cerr << "kwapayload: " << fault.file << ": " << fault.what << '\n';
    }
    status = failure;
  } catch (const std::exception& error) {
    std::cerr << "kwapayload: " << error.what() << '\n';
    status = failure;
  }
  if (!std::cout.flush()) {
    std::cerr << "kwapayload: standard output: cannot be written\n";
    status = failure;
  }
  return status;
}
