#pragma once

namespace CLI {
class App;
}

namespace kwa {

// Adds `extract`, which writes the files of an installer or archive into a folder. Throws ToolFailure when it runs and
// fails.
void AddExtractCommand(CLI::App& app);

}  // namespace kwa
