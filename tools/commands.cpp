#include "tools/command.h"

namespace TolmSDK::Graphics::sfg::tools {

std::vector<std::unique_ptr<Command>> makeCommands(CLI::App& parent) {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(makeCollapseCommand(parent));
  return commands;
}

}  // namespace TolmSDK::Graphics::sfg::tools
