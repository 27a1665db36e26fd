#pragma once

namespace CLI {
class App;
}

namespace kwa {

// Adds `preview`, which prints the dpinst.xml that an installer will write. Throws ToolFailure when it runs and fails.
void AddPreviewCommand(CLI::App& app);

}  // namespace kwa
