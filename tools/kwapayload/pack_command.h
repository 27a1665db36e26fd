#pragma once

namespace CLI {
class App;
}

namespace kwa {

// Adds `pack`, which makes an archive from a folder. Throws ToolFailure when it runs and fails.
void AddPackCommand(CLI::App& app);

}  // namespace kwa
