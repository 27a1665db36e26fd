// kwapayload: packs payload archives and looks into built installers, on the build machine.
#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "commands/commands.h"
#include "files/output_file.h"
#include "files/tool_failure.h"
#include "report/escaped_text.h"

namespace {

class NarrowHelp : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
    std::istringstream help(CLI::Formatter::make_help(app, std::move(name), mode));
    std::string text;
    for (std::string line; std::getline(help, line);) {
      text += kwa::Wrapped(line, 80) + '\n';
    }
    return text;
  }
};

// One line that names the command's own help.
std::string FailureMessage(const CLI::App* app, const CLI::Error& error) {
  const std::vector<CLI::App*> commands = app->get_subcommands();
  const std::string help = "kwapayload" + (commands.empty() ? "" : ' ' + commands.front()->get_name()) + " --help";
  const std::vector<std::string> unknown = app->remaining();
  const std::string what =
      commands.empty() && !unknown.empty() ? "unknown command '" + unknown.front() + "'" : error.what();
  return "kwapayload: " + kwa::Escaped(what) + "; '" + help + "' shows the usage\n";
}

int Run(int argc, char** argv) {
  CLI::App app("Packs payload archives and looks into built installers.", "kwapayload");
  app.formatter(std::make_shared<NarrowHelp>());  // each command takes it over
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 in order or alike, 1 findings or different, 2 could not be done or misuse.\n"
      "'kwapayload COMMAND --help' shows an example.");
  app.set_version_flag("--version", "kwapayload " KWA_VERSION);
  app.failure_message(FailureMessage);
  const std::vector<kwa::Command> commands = {
      kwa::AddCompareCommand(app), kwa::AddContentsCommand(app),      kwa::AddPackCommand(app),
      kwa::AddListCommand(app),    kwa::AddExtractCommand(app),       kwa::AddVerifyCommand(app),
      kwa::AddPreviewCommand(app), kwa::AddConfigurationCommand(app),
  };
  // An empty value comes from a script's unset variable. Taken for no value, it would silently drop what the option
  // asks for.
  const CLI::Validator notEmpty([](std::string& value) { return value.empty() ? "the value is empty" : ""; }, "");
  for (const kwa::Command& command : commands) {
    for (CLI::Option* const option : command.app->get_options()) {
      option->check(notEmpty);
    }
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kwa::kExitInOrder : kwa::kExitFailure;
  }
  for (const kwa::Command& command : commands) {
    if (command.app->parsed()) {
      return command.run();
    }
  }
  return kwa::kExitFailure;
}

}  // namespace

int main(int argc, char** argv) {
  // A file larger than the user's limit is then a failed write, reported and cleaned up like any other.
  std::signal(SIGXFSZ, SIG_IGN);
  kwa::RemoveTemporaryFileOnSignals();
  int status = kwa::kExitFailure;
  try {
    status = Run(argc, argv);
  } catch (const kwa::ToolFailure& failure) {
    for (const kwa::FileFault& fault : failure.Faults()) {
      std::cerr << "kwapayload: " << kwa::Escaped(fault.file.string()) << ": " << kwa::Escaped(fault.what) << '\n';
    }
  } catch (const std::exception& error) {
    std::cerr << "kwapayload: " << error.what() << '\n';
  }
  if (!std::cout.flush()) {
    std::cerr << "kwapayload: standard output: cannot be written\n";
    status = kwa::kExitFailure;
  }
  return status;
}
