#pragma once

namespace CLI {
class App;
}

namespace kwa {

// Adds `kwapayload verify`.
void AddVerifyCommand(CLI::App& app);

}  // namespace kwa
