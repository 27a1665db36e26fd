#pragma once

namespace CLI {
class App;
}

namespace kwa {

// Each adds a command to the program. A command throws ToolFailure when it runs and fails, and CLI::RuntimeError with
// the exit status when it has findings to tell.

void AddCompareCommand(CLI::App& app);
void AddContentsCommand(CLI::App& app);
void AddPackCommand(CLI::App& app);
void AddListCommand(CLI::App& app);
void AddExtractCommand(CLI::App& app);
void AddVerifyCommand(CLI::App& app);
void AddPreviewCommand(CLI::App& app);

}  // namespace kwa
