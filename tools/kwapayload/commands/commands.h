#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace kwa {

constexpr int kExitInOrder = 0;   // or alike
constexpr int kExitFindings = 1;  // or different
constexpr int kExitFailure = 2;   // could not be done, or misuse

// What the FILE of a command can be.
constexpr char kFileHelp[] = "Installer, payload archive, folder with a and b, or package folder with an INF";

// A command of the program. `run` returns the exit status, and throws ToolFailure when the command could not be done.
struct Command {
  CLI::App* app;  // its arguments; owned by the program
  std::function<int()> run;
};

// Each adds a command to the program.
Command AddCompareCommand(CLI::App& program);
Command AddConfigurationCommand(CLI::App& program);
Command AddContentsCommand(CLI::App& program);
Command AddExtractCommand(CLI::App& program);
Command AddListCommand(CLI::App& program);
Command AddPackCommand(CLI::App& program);
Command AddPreviewCommand(CLI::App& program);
Command AddVerifyCommand(CLI::App& program);

}  // namespace kwa
