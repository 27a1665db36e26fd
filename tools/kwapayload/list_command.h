#pragma once

namespace CLI {
class App;
}

namespace kwa {

// Adds `list`, which tells what an installer or archive holds. Throws ToolFailure when it runs and fails.
void AddListCommand(CLI::App& app);

}  // namespace kwa
